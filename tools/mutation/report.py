"""What is known of the mutants, as text."""

import collections
import datetime


def describe(result):
    def short(text):
        text = " ".join(text.split())
        return text if len(text) < 60 else text[:57] + "..."
    return (f"{result['file']}:{result['line']} {result['kind']}: "
            f"{short(result['before'])} -> {short(result['after']) or 'nothing'}")


def show(seed, stages, results, same):
    """Prints the number of the run, a table by kind of change, and the survivors with their ids;
    `same` more mutants give the same code."""
    commits = sorted({result.get("commit", "unknown") for result in results})
    print(f"\nseed {seed}, {len(results)} mutants judged, {same} more give the same code; commit "
          f"{', '.join(commits) or 'none'}; {datetime.date.today()}")
    rows = collections.defaultdict(collections.Counter)
    for result in results:
        for row in (result["kind"], "all"):
            rows[row][result["result"]] += 1
    print(f"{'':12}{'killed':>8}{'survived':>10}{'share':>9}")
    for row in sorted(rows, key=lambda name: (name == "all", name)):
        count = rows[row]
        print(f"{row:12}{count['killed']:8}{count['survived']:10}"
              f"{100 * count['killed'] / count.total():8.1f} %")
    print("\nSurvivors:")
    for result in sorted(results, key=lambda r: (r["file"], r["line"])):
        if result["result"] == "survived":
            missing = [stage for stage in stages if stage not in result.get("tested", [])]
            note = f"  (not tested by: {', '.join(missing)})" if missing else ""
            print(f"  {result['id']} {describe(result)}{note}")
