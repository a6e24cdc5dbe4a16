#!/usr/bin/env python3
"""Holds the factory table, the commands' index and, when its file is given, the library's exports against each other."""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def factories():
    text = (ROOT / "include/ky/factories.h").read_text(encoding="utf-8")
    return dict(re.findall(r"FACTORY\((\w+), (C\w+)\)", text))


def documented():
    text = (ROOT / "docs/commands/README.md").read_text(encoding="utf-8")
    of_the_library = text[text.index("## Of the library"): text.index("## Of the reference host")]
    return dict(re.findall(r"^\| \[`(\w+)`\]\(\w+\.md\) \| `(C\w+)` \|", of_the_library, re.M))


def exported(library):
    out = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", library], check=True, capture_output=True, text=True).stdout
    table = out[out.index("[Ordinal/Name Pointer] Table"):]
    return set(re.findall(r"^\s*\[\s*\d+\].*?(\w+)\s*$", table[: table.find("\n\n")], re.M))


def main():
    table, rows = factories(), documented()
    faults = []
    if not table or table != rows:
        faults.append(f"include/ky/factories.h and docs/commands/README.md differ: {sorted(table.items() ^ rows.items())}")
    for library in sys.argv[1:]:
        expected = {f"GetC{stem}Command" for stem in table}
        if (found := exported(library)) != expected:
            faults.append(f"{library}: exports and table differ: {sorted(found ^ expected)}")
    print("\n".join(faults) or f"{len(table)} commands agree")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
