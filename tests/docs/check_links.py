#!/usr/bin/env python3
"""check_links.py ROOT: every link from a page to a file or a heading of this tree leads somewhere."""

import re
import sys
from pathlib import Path

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")


def headings(page):
    """The names that a heading can be linked by."""
    titles = re.findall(r"^#+ (.*)$", page.read_text(), re.M)
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def broken(page):
    text = re.sub(r"^```.*?^```", "", page.read_text(), flags=re.M | re.S)
    for link in LINK.findall(text):
        if re.match(r"\w+:", link):
            continue
        path, _, heading = link.partition("#")
        target = (page.parent / path).resolve() if path else page
        if not target.exists() or heading and heading not in headings(target):
            yield f"{page}: {link}"


def main():
    root = Path(sys.argv[1]).resolve()
    pages = [page for top in (".", "docs", "docs/decisions", "examples") for page in
             sorted((root / top).glob("*.md"))]
    errors = [error for page in pages for error in broken(page)]
    guides = {page.name for page in (root / "docs").glob("*.md")} - {"README.md"}
    named = set(LINK.findall((root / "docs" / "README.md").read_text()))
    errors += [f"docs/README.md does not name {guide}" for guide in sorted(guides - named)]
    print("\n".join(errors))
    return 1 if errors or len(pages) < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
