#!/usr/bin/env python3
"""Holds docs/cookbook.md against the samples: each pattern names one that is rehearsed, and shows what its script says."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMMAND = re.compile(r"ky rehearse --machine samples/machines/([\w-]+)\.json --script samples/scripts/([\w-]+)\.xml")


def unindented(text):
    return "\n".join(line.strip() for line in text.strip().splitlines())


def faults(pattern, rehearsed):
    title = pattern.partition("\n")[0]
    shown, samples = re.findall(r"^```xml\n(.*?)^```$", pattern, re.M | re.S), set(COMMAND.findall(pattern))
    if not shown or len(samples) != 1:
        yield f"{title}: one sample is wanted, with its script and the line that rehearses it"
    for machine, script in samples:
        if (machine, script) not in rehearsed:
            yield f"{title}: tests/scenario/samples.h has no {script} on {machine}"
        text = unindented((ROOT / f"samples/scripts/{script}.xml").read_text(encoding="utf-8"))
        yield from (f"{title}: {script}.xml says otherwise" for excerpt in shown if unindented(excerpt) not in text)


def main():
    patterns = (ROOT / "docs/cookbook.md").read_text(encoding="utf-8").split("\n## ")[1:]
    rows = (ROOT / "tests/scenario/samples.h").read_text(encoding="utf-8")
    rehearsed = set(re.findall(r'\{"[\w-]+", "([\w-]+)", "([\w-]+)", \d\}', rows))
    found = [fault for pattern in patterns for fault in faults(pattern, rehearsed)]
    print("\n".join(found) or f"{len(patterns)} patterns show their samples")
    return 1 if found or not patterns else 0


if __name__ == "__main__":
    sys.exit(main())
