#!/usr/bin/env python3
"""Draws what a program printed on a terminal as an SVG picture, colours included.

    terminal-picture.py PROMPT <OUTPUT >PICTURE.svg

PROMPT is the line with the command, shown above the output. OUTPUT is UTF-8 with the few colour
codes that mediatool uses. rsvg-convert makes a PNG of it.
"""

import re
import sys
from xml.sax.saxutils import escape

WIDTH, HEIGHT, MARGIN = 8.4, 18, 16  # of a character and of the border, in pixels
COLUMNS = 120
COLOURS = {"1": "font-weight='bold'", "2": "fill='#9aa0a6'", "1;31": "fill='#ff6b68'",
           "33": "fill='#ffc66d'", "32": "fill='#8bc34a'", "36": "fill='#4dd0e1'", "0": ""}


def spans(line):
    style, column = "", 0
    for part in re.split(r"(\x1b\[[0-9;]*m)", line):
        code = re.fullmatch(r"\x1b\[([0-9;]*)m", part)
        if code:
            style = COLOURS.get(code.group(1), "")
        elif part:
            part = part[:COLUMNS - column]
            x = MARGIN + column * WIDTH
            yield f"<tspan x='{x:.1f}' {style}>{escape(part)}</tspan>"
            column += len(part)


def main():
    lines = [sys.argv[1], *sys.stdin.buffer.read().decode("utf-8").splitlines()]
    width = 2 * MARGIN + COLUMNS * WIDTH
    height = 2 * MARGIN + len(lines) * HEIGHT
    print(f"<svg xmlns='http://www.w3.org/2000/svg' width='{width:.0f}' height='{height}'>")
    print("<rect width='100%' height='100%' rx='8' fill='#1e1f22'/>")
    print("<g font-family='DejaVu Sans Mono' font-size='14' fill='#e8eaed' xml:space='preserve'>")
    for row, line in enumerate(lines):
        y = MARGIN + (row + 0.8) * HEIGHT
        print(f"<text y='{y:.1f}'>{''.join(spans(line))}</text>")
    print("</g></svg>")


main()
