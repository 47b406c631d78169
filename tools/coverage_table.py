#!/usr/bin/env python3
"""Prints a table by folder of gcovr's JSON report, and each line and branch without a hit.

    coverage_table.py REPORT LINES BRANCHES

The exit code is 1 when less than LINES or BRANCHES, in percent, of a program were reached.
"""

import collections
import json
import sys
from pathlib import Path


def percent(hit, total):
    return 100 * hit / total if total else 100


def share(hit, total):
    return f"{hit:6} of {total:<6}{percent(hit, total):6.1f} %"


def program_of(file):
    return "all of mediatool" if "mediatool" in Path(file).parts else "all of the launcher"


def main():
    report = json.loads(Path(sys.argv[1]).read_text())
    rows = collections.defaultdict(lambda: [0, 0, 0, 0])
    totals = collections.defaultdict(lambda: [0, 0, 0, 0])
    missing = []
    for file in sorted(report["files"], key=lambda f: f["file"]):
        folder = str(Path(file["file"]).parent)
        source = Path(file["file"]).read_text().splitlines()
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            branches = [b["count"] for b in line["branches"]]
            never = branches.count(0)
            for row in (rows[folder], totals[program_of(file["file"])]):
                row[0] += line["count"] > 0
                row[1] += 1
                row[2] += len(branches) - never
                row[3] += len(branches)
            place = f"{file['file']}:{line['line_number']}"
            code = source[line["line_number"] - 1].strip()
            if line["count"] == 0:
                missing.append(f"{place}: line: {code}")
            elif never:
                missing.append(f"{place}: {never} of {len(branches)} branches: {code}")

    print(f"{'':28}{'lines':24}{'branches':24}")
    for folder, row in sorted(rows.items()) + sorted(totals.items()):
        print(f"{folder:26}{share(*row[:2]):24}  {share(*row[2:])}")
    print(f"\nNot reached: {len(missing)}")
    for text in missing:
        print("  " + text)

    failed = not totals
    for program, row in sorted(totals.items()):
        for what, reached, least in (("lines", percent(*row[:2]), float(sys.argv[2])),
                                     ("branches", percent(*row[2:]), float(sys.argv[3]))):
            if reached < least:
                print(f"Too little: {reached:.2f} % of the {what}, {program}; {least:g} % is asked.")
                failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
