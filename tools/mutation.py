#!/usr/bin/env python3
"""Changes the product in one place at a time and looks whether a test notices.

Each mutant is built in a private copy of the sources, and tested by the test programs of its own
layer, then by those of the other layers, and last by those that run the launcher from outside, up
to the first that fails. Results are kept, one JSON object a line; a second call goes on where the
first one ended. `--until unit` leaves out the slow last stage, which a later call makes up for.

What does not compile is not counted, nor a change that no test notices because the released program
is the same with it, byte for byte.

    tools/mutation.py                        a random sample of 500, seed 1
    tools/mutation.py --sample 0             every place
    tools/mutation.py fs/copy.cpp media      the places of some files or folders
    tools/mutation.py --list fs/path.cpp     show the places, change nothing
    tools/mutation.py --report               what is known so far

The exit code is 0 when at least 97 % of the judged mutants were killed.
"""

import argparse
import collections
import hashlib
import json
import queue
import sys
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from mutation.mutants import find  # noqa: E402
from mutation.tree import PRODUCT, Failure, Tree  # noqa: E402

REPOSITORY = Path(__file__).resolve().parent.parent
# The pieces of the compiler's runtime: no other compiler uses them, and no test can see the seed of
# the stack's canary.
LEFT_OUT = {"launcher/mingw_runtime.cpp"}
STAGES = ("layer", "unit", "all")
NOT_COUNTED = ("not compiled", "same program")
GOAL = 0.97


def product_files(names):
    for folder in PRODUCT:
        for path in sorted((REPOSITORY / folder).rglob("*")):
            file = path.relative_to(REPOSITORY).as_posix()
            if path.suffix not in (".cpp", ".h") or file in LEFT_OUT:
                continue
            if not names or any(file == name or file.startswith(name.rstrip("/") + "/")
                                for name in names):
                yield file


def stage_of(program, file):
    """When a program's turn comes for a mutant of `file`: 0, 1 or 2 (STAGES)."""
    folder = program.split("/", 1)[1].rsplit("/", 1)[0]  # without "tests/"
    if folder.split("/")[0] not in PRODUCT:
        return 2
    layer = str(Path(file).parent)
    return 0 if folder == layer or folder.startswith(layer + "/") else 1


class Runner:
    def __init__(self, arguments):
        self.arguments = arguments
        self.sources = {file: (REPOSITORY / file).read_text() for file in product_files([])}
        self.results = {}
        self.lock = threading.Lock()
        self.file = Path(arguments.results)
        if self.file.exists():
            for line in self.file.read_text().splitlines():
                result = json.loads(line)
                self.results[result["id"]] = result

    def mutants(self):
        """The chosen ones, in the order in which they are judged: the seed's, by each one's own
        name, so that a change of the sources replaces few of a sample."""
        arguments = self.arguments
        found = [mutant for file in product_files(arguments.files)
                 for mutant in find(file, self.sources[file], arguments.seed)]
        found.sort(key=lambda mutant: hashlib.sha1(f"{arguments.seed} {mutant.id}".encode()).digest())
        if arguments.again:
            wanted = {json.loads(line)["id"]: None
                      for line in Path(arguments.again).read_text().splitlines()}
            found = [mutant for mutant in found if mutant.id in wanted]
            if len(found) < len(wanted):
                print(f"{len(wanted) - len(found)} places of {arguments.again} are no longer there")
        return found

    # --- before the first mutant

    def measure(self, tree):
        """How long each program takes, and which tests fail without any change."""
        self.seconds, self.skipped = {}, {}
        programs = tree.all_programs() if self.arguments.until == "all" else tree.programs()
        for program in programs:
            self.skipped[program] = []
            while True:
                start = time.monotonic()
                outcome = tree.run(program, self.filter_of(program), 1200)
                if outcome == "passed":
                    break
                print(f"left out, as it fails without a change: {program} {outcome}", flush=True)
                if outcome in ("?", "timeout") or outcome in self.skipped[program]:
                    raise Failure(f"{program} cannot be used: {outcome}")
                self.skipped[program].append(outcome)
            self.seconds[program] = time.monotonic() - start
            print(f"{self.seconds[program]:6.1f} s  {program}", flush=True)

    def filter_of(self, program):
        return ["--gtest_filter=-" + ":".join(self.skipped[program])] if self.skipped[program] else []

    # --- one mutant

    def judge(self, tree, mutant):
        known = self.results.get(mutant.id, {})
        first = STAGES.index(known["stage"]) + 1 if known.get("result") == "survived" else 0
        last = STAGES.index(self.arguments.until)
        result = {"id": mutant.id, "file": mutant.file, "line": mutant.line, "kind": mutant.kind,
                  "before": mutant.before, "after": mutant.after}
        start = time.monotonic()
        tree.apply(mutant, self.sources[mutant.file])
        try:
            objects = tree.objects_of(mutant.file)
            if objects and not tree.build(objects):
                result["result"] = "not compiled"
            else:
                result.update(self.test(tree, mutant, first, last))
                if result["result"] == "survived" and tree.is_same_program():
                    result["result"] = "same program"
        finally:
            tree.restore()
        result["seconds"] = round(time.monotonic() - start, 1)
        return result

    def test(self, tree, mutant, first, last):
        for stage in range(first, last + 1):
            programs = [p for p in self.seconds if stage_of(p, mutant.file) == stage]
            programs.sort(key=self.seconds.get)
            if programs and not tree.build(programs if stage < 2 else []):
                return {"result": "not compiled"}
            for program in programs:
                if stage < 2 and not tree.was_rebuilt(program):
                    continue
                failed = self.first_failure(tree, program)
                if failed:
                    return {"result": "killed", "stage": STAGES[stage], "by": failed}
        return {"result": "survived", "stage": STAGES[last]}

    def first_failure(self, tree, program):
        """The test that failed, twice: once may be the machine's mood."""
        timeout = 30 + 5 * self.seconds[program]
        failed = tree.run(program, self.filter_of(program), timeout)
        if failed == "passed":
            return None
        if failed in ("timeout", "?"):
            return f"{Path(program).stem}: {failed}"
        if tree.run(program, [f"--gtest_filter={failed}"], timeout) == "passed" and \
                tree.run(program, self.filter_of(program), timeout) == "passed":
            return None
        return failed

    # --- all of them

    def run(self):
        waiting = queue.Queue()
        for mutant in self.mutants():
            waiting.put(mutant)
        trees = [Tree(REPOSITORY, Path(self.arguments.folder) / f"worker{i + 1}")
                 for i in range(self.arguments.workers)]
        for tree in trees:
            tree.prepare(layers_only=self.arguments.until != "all")
        self.measure(trees[0])
        self.judged = 0
        threads = [threading.Thread(target=self.work, args=(tree, waiting)) for tree in trees]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    def take(self, waiting):
        """The next mutant to judge; none when the sample is complete."""
        with self.lock:
            while not waiting.empty() and (not self.arguments.sample or
                                           self.judged < self.arguments.sample):
                mutant = waiting.get()
                known = self.results.get(mutant.id, {})
                if known.get("result") in NOT_COUNTED:
                    continue
                self.judged += 1
                done = known.get("result") == "killed" or known.get("result") == "survived" and \
                    STAGES.index(known["stage"]) >= STAGES.index(self.arguments.until)
                if not done:
                    return mutant
        return None

    def work(self, tree, waiting):
        while mutant := self.take(waiting):
            result = self.judge(tree, mutant)
            with self.lock:
                if result["result"] in NOT_COUNTED:
                    self.judged -= 1
                self.results[mutant.id] = result
                with open(self.file, "a") as file:
                    file.write(json.dumps(result) + "\n")
                print(f"{result['seconds']:6.1f} s  {result['result']:12} {describe(result)}"
                      f"  {result.get('by', '')}", flush=True)

    # --- what is known

    def report(self):
        sample, results, same = self.arguments.sample, [], 0
        for mutant in self.mutants():
            result = self.results.get(mutant.id)
            same += bool(result) and result["result"] == "same program"
            if result and result["result"] not in NOT_COUNTED:
                results.append(dict(result, line=mutant.line))
            if sample and len(results) == sample:
                break
        rows = collections.defaultdict(collections.Counter)
        for result in results:
            for row in (result["kind"], "all"):
                rows[row][result["result"]] += 1
        print(f"\nseed {self.arguments.seed}, {len(results)} mutants judged, {same} more give the "
              "same program")
        print(f"{'':12}{'killed':>8}{'survived':>10}{'share':>9}")
        for row in sorted(rows, key=lambda name: (name == "all", name)):
            count = rows[row]
            print(f"{row:12}{count['killed']:8}{count['survived']:10}"
                  f"{100 * count['killed'] / count.total():8.1f} %")
        print("\nSurvivors:")
        for result in sorted(results, key=lambda r: (r["file"], r["line"])):
            if result["result"] == "survived":
                note = "" if result["stage"] == "all" else f"  (tested as far as {result['stage']})"
                print(f"  {result['id']} {describe(result)}{note}")
        killed = rows["all"]["killed"]
        return bool(results) and killed >= GOAL * len(results)


def describe(result):
    def short(text):
        text = " ".join(text.split())
        return text if len(text) < 60 else text[:57] + "..."
    return (f"{result['file']}:{result['line']} {result['kind']}: "
            f"{short(result['before'])} -> {short(result['after']) or 'nothing'}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("files", nargs="*", help="files or folders of the product; all without")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--sample", type=int, default=500, help="0: every place")
    parser.add_argument("--until", choices=STAGES, default="all", help="the last stage of tests")
    parser.add_argument("--workers", type=int, default=1)
    parser.add_argument("--folder", default=REPOSITORY / "build/mutation", help="for the copies")
    parser.add_argument("--results", default=REPOSITORY / "build/mutation/results.jsonl")
    parser.add_argument("--again", help="only the mutants of this results file")
    parser.add_argument("--list", action="store_true", help="show the places only")
    parser.add_argument("--report", action="store_true", help="show the results so far only")
    arguments = parser.parse_args()
    Path(arguments.folder).mkdir(parents=True, exist_ok=True)
    runner = Runner(arguments)
    if arguments.list:
        for mutant in sorted(runner.mutants(), key=lambda m: (m.file, m.start)):
            print(mutant.id, describe(vars(mutant)))
        return 0
    print(f"seed {arguments.seed}, sample {arguments.sample or 'all'}", flush=True)
    if not arguments.report:
        runner.run()
    return 0 if runner.report() else 1


if __name__ == "__main__":
    sys.exit(main())
