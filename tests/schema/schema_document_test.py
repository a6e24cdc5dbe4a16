#!/usr/bin/env python3
"""Holds resources/installerxmlschema.xsd against scripts, by a validator that knows nothing of this project."""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCHEMA = ROOT / "resources/installerxmlschema.xsd"

EXAMPLES = ROOT / "tools/ky/check/examples"
# The rules of the check that a schema document can hold a script to, and the one whose scripts are no plain ones.
STRUCTURAL = ["bad-choice", "bad-id", "bad-number", "duplicate-index", "form", "long-value", "missing-attribute",
              "unknown-attribute", "unknown-element"]
ENCIPHERED = "undecipherable"

# Commands that an editor has to underline.
REFUSED = [
    '<Unknown/>', '<jump condition="A" target="0"/>', '<Nop Next="1"/>', '<Nop value="1"/>', '<Nop>text</Nop>',
    '<Nop><Nop/></Nop>', '<Jump target="0"/>', '<Jump condition="" target="0"/>', '<Jump condition="A" target="end"/>',
    '<Jump condition="A" target="#"/>', '<Nop next="1 "/>', '<Nop next="08"/>', '<Nop next="0x"/>', '<Nop index="#a"/>',
    '<Nop id=""/>', '<Nop id="a"/><Nop id="a"/>', '<Nop index="3"/><Nop index="3"/>', '<SetVariable var="A" value="1.5"/>',
    '<DeleteFile pathFile="a" renameFile="yes"/>', '<Jump condition="A" target="0" compareCase="2"/>',
    f'<Nop errVar="{"x" * 368}"/>', f'<PathExists path="a" variable="{"x" * 236}"/>',
    '<DeleteRegKey base="HKLM" subkey="A"/>', '<LoadFilesFromResources resourceID="1"/>',
    '<LoadFilesFromResources resourceID01="1"/>', '<Nop xmlns="a"/>',
]
# And what looks odd and is good.
TAKEN = [
    '', '<Nop id="a" index="0x10" next="-1"/><Nop next="#a"/><Nop next="010"/>', '<Nop execCondition="A" errVar="B"/>',
    '<DeleteRegKey base="[Root]" subkey="A"/>', '<LoadFilesFromResources resourceID32="1" outResource32="A"/>',
    f'<PathExists path="{"x" * 367}" variable="{"x" * 235}"/>', '<DeleteRegValue base="HKEY_USERS" subkey="*\\A" value=""/>',
]


def script(commands):
    return f'<install version="1.0"><commands>{commands}</commands></install>'


def complaint(text):
    """What the validator says of a document; empty where it takes it."""
    run = subprocess.run(["xmllint", "--noout", "--nonet", "--schema", SCHEMA, "-"], input=text, capture_output=True,
                         encoding="utf-8")
    if run.returncode not in (0, 3):  # 3: well-formed and not valid
        raise SystemExit(f"xmllint ended with {run.returncode}: {run.stderr}\n{text}")
    return run.stderr if run.returncode else ""


def good():
    for folder in ("resources/script.xml", "samples/scripts/*.xml"):
        yield from ((path.relative_to(ROOT), path.read_text(encoding="utf-8")) for path in sorted(ROOT.glob(folder)))
    for page in sorted((ROOT / "docs/commands").glob("*.md")):
        if page.name == "README.md":
            continue
        example = re.search(r"^```xml\n(.*?)^```$", page.read_text(encoding="utf-8"), re.M | re.S)
        yield page.relative_to(ROOT), script(example.group(1) if example else "<no-example/>")
    for example in sorted(EXAMPLES.glob("*/*.xml")):
        rule = example.parent.name
        if rule != ENCIPHERED and (example.stem == "good" or rule not in STRUCTURAL):
            yield example.relative_to(ROOT), example.read_text(encoding="utf-8")
    yield from ((commands, script(commands)) for commands in TAKEN)


def bad():
    for rule in STRUCTURAL:
        yield f"{rule}/bad.xml", (EXAMPLES / rule / "bad.xml").read_text(encoding="utf-8")
    yield from ((commands, script(commands)) for commands in REFUSED)
    for root in ('<commands/>', '<install><commands/></install>', '<install version="2.0"><commands/></install>',
                 '<install version="1.0"/>', '<install version="1.0"><commands/><commands/></install>',
                 '<install version="1.0"><commands version="1.0"/></install>'):
        yield root, root


def main():
    faults = [f"refused: {name}\n{reason}" for name, text in good() if (reason := complaint(text))]
    faults += [f"taken: {name}" for name, text in bad() if not complaint(text)]
    print("\n".join(faults) or "the schema document takes what is good and refuses what is bad")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
