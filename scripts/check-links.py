#!/usr/bin/env python3
"""Checks that what the pages link to is there: files, pictures, and headings of pages. Needs no network."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")


def text_of(path):
    """The page without its code, where brackets mean something else."""
    text = path.read_text(encoding="utf-8")
    text = re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)
    return re.sub(r"^    .*$", "", text, flags=re.MULTILINE)


def anchors_of(path):
    headings = re.findall(r"^#+ +(.+?) *$", text_of(path), flags=re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def broken_links(page):
    for target in LINK.findall(text_of(page)):
        if re.match(r"\w+:", target):
            continue
        name, _, anchor = target.partition("#")
        path = (page.parent / name).resolve() if name else page
        if not path.exists():
            yield f"{target}: no such file"
        elif anchor and anchor not in anchors_of(path):
            yield f"{target}: no such heading"


def main():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.md"],
                            cwd=ROOT, capture_output=True, text=True, check=True).stdout.split()
    complaints = [f"{name}: {what}" for name in listed for what in broken_links(ROOT / name)]
    print("\n".join(complaints) or f"Links of {len(listed)} pages lead somewhere")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
