#!/usr/bin/env python3
"""Checks that what the pages link to is in the repository: files, pictures, and headings of pages. Needs no network."""

import re
import subprocess
import sys
from pathlib import Path
from urllib.parse import unquote

ROOT = Path(__file__).resolve().parent.parent
# What stands behind "](", whatever stands before it, so that a picture that is a link counts twice.
LINK = re.compile(r"\]\(\s*<?([^)\s>]+)[^)]*\)")


def text_of(page):
    """The page without its code, where brackets mean something else. Indented lines that go on with a list count."""
    text = re.sub(r"^```.*?^```", "", page.read_text(encoding="utf-8"), flags=re.MULTILINE | re.DOTALL)
    return re.sub(r"(\A|\n\n)(?: {4}[^\n]*\n+)+", r"\1", text)


def anchors_of(page):
    """As they are made of headings; a heading that comes again gets a number."""
    anchors = []
    for heading in re.findall(r"^#+ +(.+?) *$", text_of(page), flags=re.MULTILINE):
        anchor = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
        before = anchors.count(anchor)
        anchors += [anchor, f"{anchor}-{before}"] if before else [anchor]
    return anchors


def broken_links(page, tracked):
    for target in LINK.findall(re.sub(r"`[^`\n]*`", "", text_of(page))):
        if re.match(r"\w+:", target):
            continue
        name, _, anchor = unquote(target).partition("#")
        path = (page.parent / name).resolve() if name else page
        if path not in tracked:
            yield f"{target}: not in the repository"
        elif anchor and (path.suffix != ".md" or anchor not in anchors_of(path)):
            yield f"{target}: no such heading"


def main():
    names = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, capture_output=True, text=True, check=True).stdout
    files = [path for path in (ROOT / name for name in names.split("\0") if name) if path.exists()]
    tracked = {folder for path in files for folder in (path, *path.parents)}
    pages = [path for path in files if path.suffix == ".md"]
    complaints = [f"{page.relative_to(ROOT)}: {what}" for page in pages for what in broken_links(page, tracked)]
    if not pages:
        complaints.append("no pages")
    print("\n".join(complaints) or f"Links of {len(pages)} pages lead somewhere")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
