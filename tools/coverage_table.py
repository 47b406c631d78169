#!/usr/bin/env python3
"""Prints a table by folder of gcovr's JSON report, and each line and branch without a hit.

    coverage_table.py REPORT

The exit code is 1 when less of a program was reached than LEAST asks for.

Of an expression of several lines, gcov counts those as never reached for which the compiler made
nothing but what an exception would need. Such a line counts as reached when another one of its
expression was.
"""

import collections
import json
import re
import sys
from pathlib import Path


# Lines and branches, in percent. mediatool puts its texts together from temporaries, whose clean-up
# is counted as branches too: over a quarter of those not reached are on lines without a condition.
LEAST = {"all of the launcher": (100, 90), "all of mediatool": (100, 85)}


def percent(hit, total):
    return 100 * hit / total if total else 100


def share(hit, total):
    return f"{hit:6} of {total:<6}{percent(hit, total):6.1f} %"


def program_of(file):
    return "all of mediatool" if "mediatool" in Path(file).parts else "all of the launcher"


CHOICE = re.compile(r"\?|&&|\|\||^:|:$")
GOES_ON = re.compile(r"([,(+]|[=(] ?\{)$")
LAMBDA = re.compile(r"\[.*\]\(.*\) \{$")  # what runs its body has run the line before it


def without_comment(line):
    return line.split(" //")[0].strip()


def is_reached(number, source, counts):
    """Whether the line was, or another one of an expression without a choice at this place."""
    def reached_from(line, step):
        while True:
            upper = without_comment(source[min(line, line + step) - 1])
            goes_on = GOES_ON.search(upper) or step == 1 and LAMBDA.search(upper)
            if not goes_on or CHOICE.search(upper):
                return False
            line += step
            if counts.get(line, 0) > 0:
                return True

    return counts[number] > 0 or not CHOICE.search(without_comment(source[number - 1])) and (
        reached_from(number, -1) or reached_from(number, 1))


def main():
    report = json.loads(Path(sys.argv[1]).read_text())
    rows = collections.defaultdict(lambda: [0, 0, 0, 0])
    totals = collections.defaultdict(lambda: [0, 0, 0, 0])
    missing = []
    for file in sorted(report["files"], key=lambda f: f["file"]):
        folder = str(Path(file["file"]).parent)
        source = Path(file["file"]).read_text().splitlines()
        lines = [line for line in file["lines"] if not line.get("gcovr/noncode")]
        counts = {line["line_number"]: line["count"] for line in lines}
        for line in lines:
            reached = is_reached(line["line_number"], source, counts)
            branches = [b["count"] for b in line["branches"]]
            never = branches.count(0)
            for row in (rows[folder], totals[program_of(file["file"])]):
                row[0] += reached
                row[1] += 1
                row[2] += len(branches) - never
                row[3] += len(branches)
            place = f"{file['file']}:{line['line_number']}"
            code = source[line["line_number"] - 1].strip()
            if not reached:
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
        for what, reached, least in zip(("lines", "branches"),
                                        (percent(*row[:2]), percent(*row[2:])), LEAST[program]):
            if reached < least:
                print(f"Too little: {reached:.2f} % of the {what}, {program}; {least:g} % is asked.")
                failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
