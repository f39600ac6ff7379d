#!/usr/bin/env python3
"""check-json.py TOOL SCHEMA: what the tool writes with --json about the files in tests/check is valid
and says what its text says; --sarif holds the same findings, with what SARIF 2.1.0 wants of them."""
import glob
import json
import os
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("needs jsonschema for Python")
    sys.exit(77)  # skipped

tool, schema = sys.argv[1:]
os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), "check"))
files = sorted(glob.glob("*.conf"))


def printed(*options):
    done = subprocess.run([tool, *options, *files], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    assert done.returncode == 1, done
    return done.stdout.decode()


document = json.loads(printed("--json"))
with open(schema) as file:
    jsonschema.Draft202012Validator(json.load(file)).validate(document)
told = [
    f"{file['file']}:{f['line']}:{f['column']}: {f['severity']}: {f['text']} [{f['rule']}]"
    for file in document["files"]
    for f in file["findings"]
]
assert [file["file"] for file in document["files"]] == files
assert told == [line for line in printed("--limit", "0").splitlines() if line.endswith("]") and
                (": error: " in line or ": warning: " in line)]
assert len(told) == document["errors"] + document["warnings"]

explained = {s["name"]: s for f in document["files"] if f["file"] == "explain.conf" for s in f["sections"]}
assert explained["child"]["line"] == 7
assert explained["child"]["options"][1] == {
    "name": "log", "value": "/srv/log of child", "raw": "${base.root}/log of ${_}",
    "line": 4, "column": 1, "inherited_from": "node1"}

few = json.loads(printed("--json", "--limit", "1"))
assert [file["findings"] for file in few["files"]] == [f["findings"][:1] for f in document["files"]]
assert few["errors"] + few["warnings"] == len(told)


def region(physical):
    place = physical["region"]
    assert 0 < place["startLine"] and 0 < place["startColumn"] <= place["endColumn"]
    return f"{physical['artifactLocation']['uri']}:{place['startLine']}:{place['startColumn']}"


sarif = json.loads(printed("--sarif"))
assert sarif["version"] == "2.1.0" and len(sarif["runs"]) == 1
driver = sarif["runs"][0]["tool"]["driver"]
assert driver["name"] == "zmconfigcheck"
assert all(rule["defaultConfiguration"]["level"] in ("error", "warning") and rule["help"]["text"] and
           rule["shortDescription"]["text"] for rule in driver["rules"])
assert sarif["runs"][0]["columnKind"] == "unicodeCodePoints"
results = []
for result in sarif["runs"][0]["results"]:
    rule = driver["rules"][result["ruleIndex"]]["id"]
    assert rule == result["ruleId"]
    for related in result.get("relatedLocations", []):
        assert related["message"]["text"] and region(related["physicalLocation"])
    [place] = result["locations"]
    results.append(f"{region(place['physicalLocation'])}: {result['level']}: "
                   f"{result['message']['text']} [{rule}]")


def letters(text):  # with the column counted in letters
    name, line, column, rest = text.split(":", 3)
    before = open(name, "rb").read().replace(b"\r\n", b"\n").replace(b"\r", b"\n").split(b"\n")[int(line) - 1]
    return f"{name}:{line}:{len(before[:int(column) - 1].decode()) + 1}:{rest}"


assert results == [letters(text) for text in told]
