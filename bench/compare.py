#!/usr/bin/env python3
"""Measures zmconfigfile as a whole process beside programs that do the same work on the same data.

Both programs of a row first run once with their outputs compared, then by turns as often as --runs
says, the other one before and after each run of ours: what it leaves the machine in is the state
that ours has to do with. --rest lets the machine come to rest before each run instead. CPU is user
and system time of the process, memory its peak of resident memory; the columns show medians, the
ratios are medians over our runs, each beside the mean of the two around it. A "growth" row compares
two sizes of one kind of data and shows the exponents of CPU and memory over size. Ends with status
1 when a target is missed, outputs differ or a program is not there.
"""

import argparse
import itertools
import math
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True  # leaves no files beside the sources
import generate

HERE = os.path.dirname(os.path.abspath(__file__))
SIMPLEINI = "simpleini_print"
GROWTH = 1.1  # the highest exponent of CPU over size

# name: data for ours, program beside it, its data if other, highest ratios of CPU and memory, and
# the runs in one measurement
ROWS = {
    "flat": (["flat", 20000, 10], SIMPLEINI, None, 0.65, 1.5),
    "flat-8x": (["flat", 160000, 10], SIMPLEINI, None, 0.85, 1.5),
    "flat-mixed": (["flat", 20000, 10, "--shuffle"], SIMPLEINI, None, 0.65, 1.5),
    "wide": (["wide", 10, 50000], SIMPLEINI, None, 0.25, 1.4),
    "wide-mixed": (["wide", 10, 50000, "--shuffle"], SIMPLEINI, None, 0.25, 1.4),
    "pattern": (["pattern", 20000, 1], SIMPLEINI, ["pattern-expanded", 20000, 1], 0.5, 1.4),
    "pattern-8x": (["pattern", 160000, 1], SIMPLEINI, ["pattern-expanded", 160000, 1], 0.65, 1.4),
    "chains": (["chains", 5000], "m4", ["chains-m4", 5000], 0.5, None),
    "quoted": (["quoted", 2000, 20000], SIMPLEINI, None, 0.9, 1.1),
    "small": (["small", 500, 2048], SIMPLEINI, None, 1.0, 1.3),
    "tiny": (["flat", 1, 5], SIMPLEINI, None, 1.1, 1.3, 100),
    "names": (["names", 25000], "nodeset", None, 0.25, None),
    "names-8x": (["names", 200000], "nodeset", None, 0.7, None),
}

# name: smaller data, larger data, how many times larger (none: as the sizes of the files say), and
# the highest exponent of CPU; none where the work is in references from everywhere to everywhere,
# whose options stop fitting the caches
GROWTHS = {
    "growth-sections": (["flat", 20000, 10], ["flat", 160000, 10], None, GROWTH),
    "growth-1-64-MB": (["flat", 2850, 10], ["flat", 182400, 10], None, GROWTH),
    "growth-hosts": (["pattern", 20000, 1], ["pattern", 160000, 1], 8, GROWTH),
    "growth-options": (["pattern", 20000, 1], ["pattern", 20000, 8], 8, GROWTH),
    "growth-elsewhere": (["elsewhere", 20000], ["elsewhere", 160000], 8, GROWTH),
    "growth-chain": (["chain", 125000], ["chain", 1000000], 8, None),
    "growth-ring": (["ring", 125000], ["ring", 1000000], 8, None),
    "growth-diamond": (["diamond", 20000], ["diamond", 160000], 8, None),
    "growth-pairs": (["pairs", 32000], ["pairs", 256000], 8, None),
    "growth-shared": (["shared", 20000], ["shared", 160000], 8, None),
}


class Bench:
    def __init__(self, ours, directory, runs, rest=0, preload=None):
        self.ours, self.directory, self.runs, self.rest = ours, directory, runs, rest
        self.environment = {**os.environ, "LD_PRELOAD": preload} if preload else None
        self.build("measure.c", ["cc"])
        self.build(SIMPLEINI + ".cpp", ["c++", "-std=c++20"])

    def path(self, *name):
        return os.path.join(self.directory, *name)

    def build(self, source, compiler):
        goal = self.path(os.path.splitext(source)[0])
        subprocess.run([*compiler, "-O2", "-DNDEBUG", "-o", goal, os.path.join(HERE, source)])

    def data(self, words):
        """The files that hold this data, made when they are not there yet."""
        name = self.path("-".join(str(word) for word in words).replace("---", "-"))
        if words[0] == "small":
            os.makedirs(name, exist_ok=True)
            return generate.small(*words[1:], name)
        if not os.path.exists(name):
            maker = [sys.executable, os.path.join(HERE, "generate.py"), *map(str, words)]
            with open(name, "w") as out:
                subprocess.run(maker, stdout=out, check=True)
        return [name]

    def measure(self, command, times=1):
        """CPU in seconds and peak memory in bytes of one run."""
        time.sleep(self.rest)
        line = subprocess.run([self.path("measure"), str(times), *command],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                              env=self.environment if command[0] == self.ours else None
                              ).stdout.split()
        return int(line[0]) / 1e6 / times, int(line[1]) * 1024

    def alternate(self, ours, beside, times=1):
        """Pairs of a run of ours and the mean of the two runs of the other program around it."""
        before, pairs = self.measure(beside, times), []
        for _ in range(self.runs):
            run, after = self.measure(ours, times), self.measure(beside, times)
            pairs.append((run, [statistics.mean(both) for both in zip(before, after)]))
            before = after
        return pairs

    def output(self, command):
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              check=True).stdout

    def beside(self, program, data, words):
        if program == "nodeset":
            return [program, "-e", f"host[{1:0{len(str(words[1]))}}-{words[1]}]"]
        path = self.path(program) if program == SIMPLEINI else shutil.which(program)
        return [path, *data] if path and os.path.exists(path) else None

    def same(self, row, first, second):
        """Whether both outputs say the same; where they don't, shows the first difference."""
        a, b = self.output(first).split(b"\n"), self.output(second).split(b"\n")
        if row.startswith("names"):  # nodeset prints the names alone, on one line
            a, b = [line[1:-1] for line in a if line[:1] == b"["], b[0].split()
        elif row == "wide-mixed":  # ours keeps the order of the labels, the other sorts them
            a, b = sorted(a), sorted(b)
        if a == b:
            return True
        for n, (x, y) in enumerate(itertools.zip_longest(a, b)):
            if x != y:
                print(f"{row}: line {n + 1} differs: {x!r:.90} and {y!r:.90}", file=sys.stderr)
                return False


def report(name, pairs, ratios, targets, same=True):
    """Prints one line of the table; true when all is as it should be."""
    ratios = [round(ratio, 2) for ratio in ratios]
    held = all(target is None or ratio <= target for ratio, target in zip(ratios, targets))
    cells = [name]
    for n, unit in ((0, 1e3), (1, 1 / 1048576)):
        cells += [f"{statistics.median(p[who][n] for p in pairs) * unit:.4g}" for who in (0, 1)]
        cells += [f"{ratios[n]:.2f}", "-" if targets[n] is None else f"{targets[n]:g}"]
    cells.append("OUTPUT DIFFERS" if not same else "ok" if held else "MISS")
    print("| " + " | ".join(cells) + " |", flush=True)
    return held and same


def compare(bench, name):
    words, program, other, cpu, memory, *times = ROWS[name]
    data = bench.data(words)
    first = [bench.ours, *data]
    second = bench.beside(program, bench.data(other) if other else data, words)
    if not second or not shutil.which(second[0]):
        print(f"| {name} | not measured: {program} is not there |")
        return False
    same = bench.same(name, first, second)
    pairs = bench.alternate(first, second, *times)
    ratios = [statistics.median(a[n] / b[n] for a, b in pairs) for n in (0, 1)]
    return report(name, pairs, ratios, (cpu, memory), same)


def growth(bench, name):
    small, large, factor, highest = GROWTHS[name]
    small, large = bench.data(small), bench.data(large)
    factor = factor or os.path.getsize(large[0]) / os.path.getsize(small[0])
    pairs = bench.alternate([bench.ours, *small], [bench.ours, *large])
    exponents = [statistics.median(math.log(b[n] / a[n], factor) for a, b in pairs) for n in (0, 1)]
    return report(name, pairs, exponents, (highest, None))


def measured(bench, name):
    try:
        return compare(bench, name) if name in ROWS else growth(bench, name)
    except subprocess.CalledProcessError as error:
        print(f"| {name} | {error} |".replace("\n", " ")[:200])
        return False


def main():
    names = [*ROWS, *GROWTHS]
    parser = argparse.ArgumentParser(description=__doc__, epilog="rows: " + " ".join(names),
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("zmconfigfile", help="the program to measure")
    parser.add_argument("--rows", default=",".join(names), help="names, separated by commas")
    parser.add_argument("--runs", type=int, default=7, help="runs of ours (%(default)s)")
    parser.add_argument("--rest", type=float, default=0, metavar="SECONDS",
                        help="before each run, which gives it a machine at rest")
    parser.add_argument("--preload", metavar="LIBRARY", help="an allocator for our program")
    parser.add_argument("--keep", metavar="DIRECTORY", help="make the data there and leave it")
    options = parser.parse_args()
    rows = options.rows.split(",")
    if unknown := [row for row in rows if row not in names]:
        parser.error("no such row: " + ", ".join(unknown))
    if not shutil.which(options.zmconfigfile):
        parser.error("no such program: " + options.zmconfigfile)
    with tempfile.TemporaryDirectory(prefix="zmbench") as directory:
        if options.keep:
            os.makedirs(options.keep, exist_ok=True)
        ours, place = os.path.abspath(options.zmconfigfile), options.keep or directory
        bench = Bench(ours, place, options.runs, options.rest, options.preload)
        print("| row | CPU ms | beside | ratio | at most | peak MB | beside | ratio | at most | |")
        print("|---|---|---|---|---|---|---|---|---|---|", flush=True)
        held = [measured(bench, row) for row in rows]
    return 0 if all(held) else 1


if __name__ == "__main__":
    sys.exit(main())
