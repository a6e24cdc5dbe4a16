#!/usr/bin/env python3
"""Holds the layers drawn in docs/architecture.md against the includes and the link targets.

The document's table has one row a room: `| `room/` | one line | `room/`, `room/` |`, the third cell naming the rooms that
it may see besides itself. A file belongs to the room with the longest matching path.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ROW = re.compile(r"^\| `([\w/.]+/)` \|[^|]*\| ([^|]*)\|$", re.M)
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
LIBRARY = re.compile(r"\b(?:ky_library|ky_test_program)\(\s*(\w+)(.*?)\)", re.S)
TARGET_LINKS = re.compile(r"target_link_libraries\(\s*(\w+)\s+(?:PUBLIC|PRIVATE|INTERFACE)\s+(.*?)\)", re.S)
EXECUTABLE = re.compile(r"add_(?:executable|library)\(\s*(\w+)")


def tracked(*suffixes):
    out = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                         capture_output=True, text=True).stdout
    return [p for p in out.splitlines() if p.endswith(suffixes) and (ROOT / p).exists()]


def room_of(path, rooms):
    return max((room for room in rooms if path.startswith(room)), key=len, default=None)


def resolve(name):
    """The repository's file behind an include: from the root, or a boundary header."""
    for base in ("", "include/"):
        if (ROOT / (base + name)).exists():
            return base + name
    return None


def include_faults(rooms):
    for path in tracked(".h", ".cpp"):
        if path.endswith("_test.cpp") or path.startswith("tests/"):
            continue
        room = room_of(path, rooms)
        if room is None:
            yield f"{path}: no room of the drawing holds it"
            continue
        for name in INCLUDE.findall((ROOT / path).read_text(encoding="utf-8")):
            target = resolve(name)
            seen = target and room_of(target, rooms)
            if seen and seen != room and seen not in rooms[room]:
                yield f"{path}: includes {name}, but {room} may not see {seen}"


def link_faults(rooms):
    home, links = {}, {}
    for path in tracked("CMakeLists.txt"):
        folder = path[: -len("CMakeLists.txt")]
        text = (ROOT / path).read_text(encoding="utf-8")
        for target, rest in LIBRARY.findall(text):
            sources = re.search(r"SOURCES\s+([\w./-]+)", rest)
            home[target] = folder + (sources.group(1) if sources else "")
            named = re.search(r"LINKS\s+(.*?)(?:TESTS|SOURCES|$)", rest, re.S)
            links.setdefault(target, []).extend(named.group(1).split() if named else [])
        for target in EXECUTABLE.findall(text):
            home.setdefault(target, folder)
        for target, rest in TARGET_LINKS.findall(text):
            links.setdefault(target, []).extend(rest.split())
    for target, names in links.items():
        room = room_of(home.get(target, ""), rooms)
        if room is None or home[target].startswith("tests/"):
            continue
        for name in names:
            seen = home.get(name) and room_of(home[name], rooms)
            if seen and seen != room and seen not in rooms[room]:
                yield f"{home[target]}: {target} links {name}, but {room} may not see {seen}"


def main():
    drawn = ROW.findall((ROOT / "docs/architecture.md").read_text(encoding="utf-8"))
    rooms = {room: set(re.findall(r"`([\w/.]+/)`", seen)) for room, seen in drawn}
    faults = [f"docs/architecture.md: {room} names {seen}, which is no room"
              for room, names in rooms.items() for seen in names if seen not in rooms]
    faults += [f"docs/architecture.md: {room} does not exist" for room in rooms if not (ROOT / room).is_dir()]
    faults += sorted(set(include_faults(rooms))) + sorted(set(link_faults(rooms)))
    print("\n".join(faults) or f"{len(rooms)} rooms hold to their layers")
    return 1 if faults or not rooms else 0


if __name__ == "__main__":
    sys.exit(main())
