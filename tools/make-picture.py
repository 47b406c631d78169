#!/usr/bin/env python3
"""Draws the picture of a terminal for docs/images: mediatool's output, in the colours that it has on
a terminal.

    make-picture.py COMMAND PNG <OUTPUT      the command as typed; needs rsvg-convert
"""

import re
import subprocess
import sys
from xml.sax.saxutils import escape

WIDTH, LINE, LEFT, TOP = 1040, 18, 16, 31
STYLES = {"bold": 'font-weight="bold"', "dim": 'fill="#8b949e"',
          "red": 'fill="#ff7b72" font-weight="bold"', "yellow": 'fill="#e3b341"',
          "green": 'fill="#7ee787"', "cyan": 'fill="#79c0ff"'}
# The first that fits a line: the styles of the groups.
RULES = [
    (r"(  )(error)( +)(\S+)(.*)", ("", "red", "", "bold", "")),
    (r"(  )(warning)( +)(\S+?)(:?.*)", ("", "yellow", "", "bold", "")),
    (r"(  )(note)( +)(\S+?)(:.*)", ("", "cyan", "", "bold", "")),
    (r"(  )(found)(    .*)", ("", "green", "")),
    (r"(  )(box|dialog)(   .*)", ("", "yellow", "")),
    (r"(.*)(\(before: .*)", ("", "dim")),
    (r"(  and \d+ backups.*)", ("dim",)),
    (r"(  )([1-9]\d*)(: .*)", ("", "red", "")),
    (r"(\d+ errors?)(.*)", ("red", "")),
    (r"( {11})([A-Z]:\\.*)", ("", "dim")),
    (r"(\S.*)", ("bold",)),
]


def spans(line):
    for pattern, styles in RULES:
        if match := re.fullmatch(pattern, line):
            return zip(match.groups(), styles)
    return [(line, "")]


def drawn(line, y):
    parts = "".join(f'<tspan {STYLES.get(style, "")}>{escape(text)}</tspan>'
                    for text, style in spans(line))
    return f'<text x="{LEFT}" y="{y}" xml:space="preserve">{parts}</text>'


def main():
    command, target = sys.argv[1:]
    lines = sys.stdin.read().rstrip("\n").split("\n")
    height = TOP + LINE * len(lines) + 17
    body = [f'<text x="{LEFT}" y="{TOP}" xml:space="preserve">{escape(command)}</text>']
    body += [drawn(line, TOP + LINE * (i + 1)) for i, line in enumerate(lines)]
    svg = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}">'
           f'<rect width="100%" height="100%" rx="8" fill="#1f2024"/>'
           f'<g font-family="DejaVu Sans Mono" font-size="14" fill="#e6e6e6">{"".join(body)}</g></svg>')
    subprocess.run(["rsvg-convert", "-o", target], input=svg.encode(), check=True)


if __name__ == "__main__":
    main()
