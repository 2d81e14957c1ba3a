#!/usr/bin/env python3
"""Checks which room includes which against the table of rooms in docs/architecture.md.

A room is a folder in backticks that ends in a slash in the first column. The last column names, in the same form, what
its files may include; a header in backticks allows that header alone, and `**` allows everything. A room may include
itself, and what lies below it in its own folder unless that is a room of its own.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def read_rooms():
    rooms = {}
    for line in (ROOT / "docs/architecture.md").read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        names = re.findall(r"`([\w/]+/)`", cells[0])
        if len(cells) == 3 and names:
            for name in names:
                rooms[name] = re.findall(r"`([\w/.*]+)`", cells[2])
    return rooms


def room_of(path, rooms):
    return max((room for room in rooms if path.startswith(room)), key=len, default=None)


def allowed(header, room, rooms):
    target = room_of(header, rooms)
    if target is None or target == room:
        return True
    return any(arrow in ("**", header, target) for arrow in rooms[room])


def main():
    rooms = read_rooms()
    wrong = []
    for room in (room for room in rooms if "**" not in rooms[room]):
        for file in sorted((ROOT / room).rglob("*")):
            name = file.relative_to(ROOT).as_posix()
            if file.suffix not in (".h", ".cpp", ".in") or room_of(name, rooms) != room:
                continue
            for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
                include = INCLUDE.match(line)
                if include and not allowed(include[1], room, rooms):
                    wrong.append(f"{name}:{number}: {room} may not include {include[1]}")
    if not rooms:
        wrong.append("docs/architecture.md: no table of rooms")
    print("\n".join(wrong) or f"Includes of {len(rooms)} rooms follow the table")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
