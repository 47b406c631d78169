#!/usr/bin/env python3
"""Prints a table by folder of gcovr's JSON report, and each line and branch without a hit."""

import collections
import json
import sys
from pathlib import Path


def share(hit, total):
    return f"{hit:6} of {total:<6}{100 * hit / total if total else 100:6.1f} %"


def main():
    report = json.loads(Path(sys.argv[1]).read_text())
    rows = collections.defaultdict(lambda: [0, 0, 0, 0])
    missing = []
    for file in sorted(report["files"], key=lambda f: f["file"]):
        folder = str(Path(file["file"]).parent)
        source = Path(file["file"]).read_text().splitlines()
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            branches = [b["count"] for b in line["branches"]]
            never = branches.count(0)
            for row in (rows[folder], rows["all"]):
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

    print(f"{'':16}{'lines':24}{'branches':24}")
    for folder in sorted(rows, key=lambda name: (name == "all", name)):
        lines, all_lines, branches, all_branches = rows[folder]
        print(f"{folder:14}{share(lines, all_lines):24}  {share(branches, all_branches)}")
    print(f"\nNot reached: {len(missing)}")
    for text in missing:
        print("  " + text)


if __name__ == "__main__":
    main()
