#!/usr/bin/env python3
"""Looks whether every relative link of Markdown files leads somewhere: to a file, and to
a heading of it where it names one.

    tools/check-links.py FILE...

Links to other sites are not followed. The exit code is 0 when all lead somewhere.
"""

import re
import sys
from pathlib import Path
from urllib.parse import unquote

LINK = re.compile(r"\]\(([^()\s]+)\)")
CODE = re.compile(r"^```.*?^```$|`[^`\n]*`", re.DOTALL | re.MULTILINE)


def anchors(page):
    """What the page's headings are called in links, as the usual viewers do it."""
    text = re.sub(r"^```.*?^```$", "", page.read_text("utf-8"), flags=re.DOTALL | re.MULTILINE)
    for heading in re.findall(r"^#+ (.+)$", text, re.MULTILINE):
        yield re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def leads_nowhere(page, link):
    if re.match(r"[a-z]+:", link):
        return False
    path, _, anchor = unquote(link).partition("#")
    target = page.parent / path if path else page
    return not target.exists() or bool(anchor) and anchor not in anchors(target)


def main():
    pages = [Path(name) for name in sys.argv[1:]]
    if not pages or not all(page.is_file() for page in pages):
        sys.exit(__doc__)
    lost = [f"{page}: {link}" for page in pages
            for link in LINK.findall(CODE.sub("", page.read_text("utf-8")))
            if leads_nowhere(page, link)]
    print("\n".join(lost) if lost else f"all links of {len(pages)} pages lead somewhere")
    sys.exit(1 if lost else 0)


main()
