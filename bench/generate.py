#!/usr/bin/env python3
"""Makes the benchmark data: generate.py KIND [NUMBER...] [--shuffle] prints one text.

Every text is the same at each run. All programs that are compared read it the same way: labels are
one word, a value is one word or a quoted text with a blank in it, comments have lines of their own,
and no quoted text holds a quote or a backslash. Labels stand in ascending order, sections too,
which is what a program that keeps them in a sorted tree likes best; --shuffle mixes the sections of
a flat text and the labels of a wide one.

  flat SECTIONS OPTIONS           plain sections; 20000 x 10 is about 7 MB
  wide SECTIONS OPTIONS           few sections, many options
  pattern HOSTS TIMES             one pattern header with a parent: 12 inherited and 6 own options,
  pattern-expanded HOSTS TIMES    each TIMES times over, 3 of the own ones with references; expanded
  chains SECTIONS                 10 qualified references each, in chains 1 to 5 deep
  chains-m4 SECTIONS              the same as input for m4
  quoted VALUES BYTES             long quoted values, 20 to a section
  names HOSTS                     one pattern header with one option
  chain OPTIONS                   each option refers to the next one
  ring OPTIONS                    the same, and the last one to the first
  diamond LEVELS                  each option refers to the next one twice, the last one is empty
  pairs OPTIONS                   each option refers to two others, with text between
  shared OPTIONS                  as many options copied unexpanded, and under one long chain
  elsewhere HOSTS                 one pattern header, then HOSTS options of another section
  small COUNT BYTES DIRECTORY     COUNT files of about BYTES bytes in DIRECTORY, names printed
"""

import os
import random
import sys

SEED = 20101

WORDS = """access archive backup batch bridge cache camera cluster color comp depth disk domain
engine farm filter frame gamma geometry group kernel layer license light limit mask memory mesh
mirror network node output plate pool priority profile quota rack region render replica sample scene
shader shadow shot storage studio texture thread timeout token trace vendor version volume worker
zone""".split()
LABELS = sorted(a + b for a in WORDS[::3] for b in ("", "path", "count", ".mode"))
INHERITED = "arch cores disk domain gateway group home image kernel location memory root".split()
OWN = "scratch site spool threads timeout title".split()


def values(rng, count=40000):
    """A stock of option values: numbers, paths, names and, one in eight, a quoted text."""
    def w():
        return rng.choice(WORDS)

    def one():
        kind = rng.randrange(8)
        if kind == 0:
            return f'"{w()} {w()} for {w()} {rng.randrange(100)}"'
        if kind <= 2:
            return str(rng.randrange(10 ** rng.randrange(1, 9)))
        if kind <= 5:
            return f"/mnt/{w()}/{w()}{rng.randrange(1000):03}/{w()}"
        return f"{w()}.{w()}.example:{rng.randrange(1024, 65536)}"
    return [one() for _ in range(count)]


def section(name, labels, chosen):
    return f"[{name}]\n" + "".join(f"{a} = {b}\n" for a, b in zip(labels, chosen))


def flat(sections, options, shuffle=False):
    rng = random.Random(SEED)
    stock = values(rng)
    order = list(range(1, sections + 1))
    if shuffle:
        rng.shuffle(order)
    for n in order:
        if n % 5 == 0:
            yield f"\n# the {rng.choice(WORDS)} hosts of rack {n // 5} ({rng.choice(WORDS)})\n"
        labels = sorted(rng.sample(LABELS, options))
        yield section(f"{WORDS[n * len(WORDS) // (sections + 1)]}{n:07}", labels,
                      rng.choices(stock, k=options))


def wide(sections, options, shuffle=False):
    rng = random.Random(SEED)
    stock = values(rng)
    for n in range(sections):
        labels = [f"host{i:06}.{rng.choice(WORDS)}" for i in range(options)]
        if shuffle:
            rng.shuffle(labels)
        yield section(f"table{n:02}", labels, rng.choices(stock, k=options))


def hosts(prefix, count):
    """Host names with a number of at least five digits, and how many digits it has."""
    width = max(5, len(str(count)))
    return [f"{prefix}{n:0{width}}" for n in range(1, count + 1)], width


def farm(times):
    """The options of the base section and those of a host, with references as a file has them."""
    rng = random.Random(SEED)
    stock = values(rng, 1000)
    base, own = {}, {}
    for n in range(times):
        tail = str(n) if n else ""
        base |= {label + tail: rng.choice(stock) for label in INHERITED}
        chosen = (f"/scratch{tail}/$_", f"$base.location{tail}", f"/spool$self.scratch{tail}",
                  str(rng.randrange(64)), str(rng.randrange(3600)), '"render host of the farm"')
        own |= {label + tail: value for label, value in zip(OWN, chosen)}
        base["location" + tail] = f"/mnt/{rng.choice(WORDS)}"
    return dict(sorted(base.items())), dict(sorted(own.items()))


def pattern(count, times=1):
    base, own = farm(times)
    width = hosts("node", count)[1]
    yield section("base", base, base.values())
    yield f"[node[{1:0{width}}-{count}]] : base\n"
    yield section("", own, own.values()).partition("\n")[2]


def pattern_expanded(count, times=1):
    base, own = farm(times)
    yield section("base", base, base.values())
    texts = section("@", base | own, (base | own).values())
    for n in range(times):
        tail = str(n) if n else ""
        texts = texts.replace(f"= $base.location{tail}\n", f"= {base['location' + tail]}\n")
        texts = texts.replace(f"$self.scratch{tail}\n", f"/scratch{tail}/@\n")
    texts = texts.replace("$_", "@")
    for name in hosts("node", count)[0]:
        yield texts.replace("@", name)


def chain_values(sections):
    """(section, label): (text, the section and label that the reference after it names)."""
    rng = random.Random(SEED)
    names = hosts("unit", sections)[0]
    sites = [f"site{n:02}" for n in range(50)]
    links = {(site, "hop0" + c): (rng.choice(WORDS), None) for site in sites for c in "ab"}
    for name in names:
        for depth in range(1, 6):
            for c in "ab":
                goal = rng.choice(names if depth > 1 else sites)
                link = f"/{rng.choice(WORDS)}/", (goal, f"hop{depth - 1}" + rng.choice("ab"))
                links[name, f"hop{depth}{c}"] = link
    return links


def chains(sections):
    links = chain_values(sections)
    last = None
    for (name, label), (text, goal) in links.items():
        if name != last:
            yield f"[{name}]\n"
        last = name
        reference = "$" + ".".join(goal) if goal else ""
        yield f"{label} = {text}{reference}\n"


def chains_m4(sections):
    links = chain_values(sections)
    yield "divert(-1)\n"
    for (name, label), (text, goal) in links.items():
        macro = "_".join(goal) if goal else ""
        yield f"define(`{name}_{label}', `{text}{macro}')\n"
    yield "divert(0)dnl\n"
    last = None
    for name, label in sorted(links):
        if name != last:
            yield f"[{name}]\n"
        last = name
        yield f"{label} = {name}_{label}\n"


def quoted(count, size):
    rng = random.Random(SEED)
    marks = ["", "", "", "", ",", ".", ":", ";", " =", " #", " [x]", " {y}"]
    text = " ".join(rng.choice(WORDS) + rng.choice(marks) for _ in range(200000))
    for n in range(count):
        if n % 20 == 0:
            yield f"[notes{n // 20:05}]\n"
        start = rng.randrange(len(text) - size)
        yield f'text{n % 20:02} = "{text[start:start + size]}"\n'


def names(count):
    width = len(str(count))
    yield f"[host[{1:0{width}}-{count}]]\npool = render\n"


def chain(count, last=None):
    yield "[a]\n"
    for n in range(count - 1):
        yield f"o{n} = $a.o{n + 1}\n"
    yield f"o{count - 1} = {last or 'end'}\n"


def ring(count):
    return chain(count, "$a.o0")


def diamond(levels):
    yield "[a]\n"
    for n in range(levels):
        yield f'o{n} = "${{a.o{n + 1}}}${{a.o{n + 1}}}"\n'
    yield f"o{levels} = $nosuch\n"


def pairs(count):
    rng = random.Random(SEED)
    yield "[a]\n"
    for n in range(count):
        one, two = rng.randrange(count), rng.randrange(count)
        yield f'o{n} = "one ${{a.o{one}}} two ${{a.o{two}}}"\n'


def shared(count):
    yield "[base]\n"
    for n in range(count):
        yield f'x{n} = "${{base.x{n + 1}}}${{base.e}}"\n'
    yield f'x{count} = "' + "".join(f"${{s.a{n}}}" for n in range(count)) + '"\n'
    yield "e = $nosuch\n[s]\n"
    for option, value in (("a", "$b%d"), ("c", "$base.x0"), ("b", "$base.e")):
        for n in range(count):
            yield f"{option}{n} = {value.replace('%d', str(n))}\n"


def elsewhere(count):
    yield f"[n[1-{count}]]\n"
    for n in range(count):
        yield "other . k = 1\n"


def small(count, size, directory):
    """Writes the files and gives their names."""
    rng = random.Random(SEED)
    stock = values(rng)
    made = []
    for n in range(count):
        text, at = "", 0
        while len(text) < size - 150:
            at += 1
            name = f"{rng.choice(WORDS[at * 4:at * 4 + 4])}{n:03}"
            text += section(name, sorted(rng.sample(LABELS, 8)), rng.choices(stock, k=8))
        made.append(os.path.join(directory, f"host{n:03}.conf"))
        with open(made[-1], "w", encoding="ascii") as out:
            out.write(text)
    return made


KINDS = {"flat": flat, "wide": wide, "pattern": pattern, "pattern-expanded": pattern_expanded,
         "chains": chains, "chains-m4": chains_m4, "quoted": quoted, "names": names, "small": small, "chain": chain, "ring": ring,
         "diamond": diamond, "pairs": pairs, "shared": shared, "elsewhere": elsewhere}


def main(arguments):
    words = [a for a in arguments if a != "--shuffle"]
    kind = KINDS.get(words[0]) if words else None
    if not kind:
        sys.exit(__doc__)
    options = {"shuffle": True} if len(words) < len(arguments) else {}
    pieces = kind(*[int(a) if a.isdigit() else a for a in words[1:]], **options)
    sys.stdout.writelines(pieces if kind is not small else [name + "\n" for name in pieces])


if __name__ == "__main__":
    main(sys.argv[1:])
