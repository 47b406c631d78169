#!/usr/bin/env python3
"""Changes the product in one place at a time and looks whether a test notices.

Each mutant is built in a private copy of the sources, and tested by the test programs of its own
layer, by those of the other layers, by the inputs that the fuzzers keep, and last by the programs
that run the launcher or mediatool from outside, up to the first that fails: twice, as a time limit
that was passed once may be the machine's mood. What noticed other changes of a file goes first.
Where it is known which tests enter the changed function, no others are asked: they could only notice
what the compiler has made of it already. Results are kept, one JSON object a line; a second call
goes on where the first one ended.

What does not compile is not counted, nor a change that no test notices because the released program
is the same with it, byte for byte, or the object code that it is made of.

    tools/mutation.py                        a random sample of 500 of the launcher, seed 1
    tools/mutation.py mediatool              the same of mediatool
    tools/mutation.py --seed 2               another sample: a number that was not used before
    tools/mutation.py --reach                finds out first, in some minutes, which tests enter
                                             which functions
    tools/mutation.py --sample 0             every place
    tools/mutation.py fs/copy.cpp media      the places of some files or folders
    tools/mutation.py --stages fuzz FILE...  by the kept inputs alone
    tools/mutation.py --list fs/path.cpp     show the places, change nothing
    tools/mutation.py --report               what is known so far

The exit code is 0 when at least 97 % of the judged mutants were killed.
"""

import argparse
import concurrent.futures
import hashlib
import json
import queue
import subprocess
import sys
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from mutation.mutants import find  # noqa: E402
from mutation.reached import Reached  # noqa: E402
from mutation.report import describe, show  # noqa: E402
from mutation.tree import LAUNCHER, MEDIATOOL, PROGRAMS, Failure, Tree, is_fuzzer  # noqa: E402

REPOSITORY = Path(__file__).resolve().parent.parent
# The pieces of the compiler's runtime: no other compiler uses them, and no test can see the seed of
# the stack's canary.
LEFT_OUT = {"launcher/mingw_runtime.cpp"}
STAGES = ("layer", "unit", "fuzz", "all")
NOT_COUNTED = ("not compiled", "same code")
GOAL = 0.97
FEW = 8  # tests
MOST_OF_A_FILTER = 30000  # characters: a command line has 32,767


def product_files(names):
    for folder in LAUNCHER + MEDIATOOL:
        for path in sorted((REPOSITORY / folder).rglob("*")):
            file = path.relative_to(REPOSITORY).as_posix()
            if path.suffix not in (".cpp", ".h") or file in LEFT_OUT:
                continue
            if any(file == name or file.startswith(name.rstrip("/") + "/") for name in names):
                yield file


def is_in(path, folders):
    return any(path.startswith(folder + "/") for folder in folders)


def stage_of(program, file):
    """When a program's turn comes for a mutant of `file`: one of STAGES; None when it neither has
    the changed code in it nor starts a program that has."""
    if is_fuzzer(program):
        return "fuzz"
    folder = program.split("/", 1)[1]  # without "tests/"
    of_mediatool = is_in(folder, [Path(name).name for name in MEDIATOOL])
    if is_in(file, MEDIATOOL):
        return "layer" if of_mediatool else None
    if not is_in(folder, LAUNCHER):
        return "all"
    return "layer" if is_in(folder, [str(Path(file).parent)]) else "unit"


def commit():
    """What is checked out, as a text for a report."""
    return subprocess.run(["git", "describe", "--always", "--dirty", "--exclude=*"],
                          cwd=REPOSITORY, check=True, capture_output=True, text=True).stdout.strip()


class Runner:
    def __init__(self, arguments):
        self.arguments = arguments
        self.sources = {file: (REPOSITORY / file).read_text()
                        for file in product_files(LAUNCHER + MEDIATOOL)}
        self.commit = commit()
        self.files = list(product_files(arguments.files))
        self.results = {}
        self.lock = threading.Lock()
        self.reached = Reached(Path(arguments.folder) / "reached.json")
        self.file = Path(arguments.results)
        if self.file.exists():
            for line in self.file.read_text().splitlines():
                result = json.loads(line)
                self.results[result["id"]] = result

    def mutants(self):
        """The chosen ones, in the order in which they are judged: the seed's, by each one's own
        name, so that a change of the sources replaces few of a sample."""
        arguments = self.arguments
        found = [mutant for file in self.files
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

    def needed(self, tree):
        """The test programs for the chosen files and stages."""
        stages = set(self.arguments.stages) | ({"layer"} if "all" in self.arguments.stages else set())
        return [program for program in tree.test_programs()
                if {stage_of(program, file) for file in self.files} & stages]

    def find_reached(self, programs):
        tree = Tree(REPOSITORY, Path(self.arguments.folder) / "traced")
        tree.prepare_traced()
        programs = [program for program in programs if not is_fuzzer(program)]
        tree.build_or_fail([*programs, *PROGRAMS])
        tree.start_wine()
        self.reached.find(tree, programs, self.sources)

    def measure(self, trees, programs):
        """How long each program takes, and which tests fail without any change."""
        self.seconds, self.skipped, self.tests = {}, {}, {}
        idle = queue.SimpleQueue()
        for tree in trees:
            idle.put(tree)

        def measure_one(program):
            tree = idle.get()
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
            self.tests[program] = [] if is_fuzzer(program) else self.reached.tests_in(tree, program)
            print(f"{self.seconds[program]:6.1f} s  {program}", flush=True)
            idle.put(tree)

        with concurrent.futures.ThreadPoolExecutor(len(trees)) as pool:
            list(pool.map(measure_one, programs))

    def filter_of(self, program):
        return ["--gtest_filter=-" + ":".join(self.skipped[program])] if self.skipped[program] else []

    def tests_for(self, program, mutant):
        """Those that can notice it, the nearest first; None for all of the program."""
        near = self.reached.tests_for(program, mutant, self.sources[mutant.file])
        if near is None:
            return None
        near += [test for test in self.tests[program] if test not in self.reached.tests[program]]
        return [test for test in near
                if test in self.tests[program] and test not in self.skipped[program]]

    def attempts(self, programs, mutant):
        """What to run, as programs and filters: what noticed other changes of the file, the few
        tests of each program that are nearest, then all that can notice it."""
        possible = {program: self.tests_for(program, mutant) for program in programs}
        few = [(program, tests[:FEW]) for program, tests in possible.items()
               if tests and len(tests) > FEW]
        for program, tests in [*((p, self.killers(p, Path(mutant.file))) for p in programs), *few,
                               *possible.items()]:
            text = "--gtest_filter=" + ":".join(tests or ())
            if tests is None or len(text) > MOST_OF_A_FILTER:
                yield program, self.filter_of(program)
            elif tests:
                yield program, [text]

    # --- one mutant

    def judge(self, tree, mutant):
        tested = self.results.get(mutant.id, {}).get("tested", [])
        result = {"id": mutant.id, "file": mutant.file, "line": mutant.line, "kind": mutant.kind,
                  "before": mutant.before, "after": mutant.after, "commit": self.commit}
        start = time.monotonic()
        tree.apply(mutant, self.sources[mutant.file])
        try:
            objects = tree.objects_of(mutant.file)
            if objects and not tree.build(objects):
                result["result"] = "not compiled"
            else:
                result.update(self.test(tree, mutant, tested))
                if result["result"] == "survived" and tree.is_same_code():
                    result["result"] = "same code"
        finally:
            tree.restore()
        result["seconds"] = round(time.monotonic() - start, 1)
        return result

    def test(self, tree, mutant, tested):
        tested = list(tested)
        for stage in self.arguments.stages:
            if stage in tested:
                continue
            programs = [p for p in self.seconds if stage_of(p, mutant.file) == stage]
            if stage == "all":
                # Of its own layer, those without the change in them: they may start what has it.
                own = [p for p in self.seconds if stage_of(p, mutant.file) == "layer"]
                if not tree.build(own):
                    return {"result": "not compiled"}
                programs += [p for p in own if not tree.was_rebuilt(p)]
            programs.sort(key=lambda program: (-len(self.killers(program, Path(mutant.file).parent)),
                                               self.seconds[program]))
            useful = {}
            for program, tests in self.attempts(programs, mutant):
                if program not in useful:
                    is_built = tree.build([program]) and tree.build_fuzzers([program])
                    # What the fuzzers' compiler alone refuses is no mutant for them.
                    if not is_built and not is_fuzzer(program):
                        return {"result": "not compiled"}
                    useful[program] = is_built and (stage == "all" or tree.was_rebuilt(program))
                if not useful[program]:
                    continue
                failed = self.first_failure(tree, program, tests)
                if failed:
                    return {"result": "killed", "stage": stage, "program": program, "by": failed}
            tested.append(stage)
        return {"result": "survived", "tested": tested}

    def killers(self, program, place):
        """The tests of a program that noticed changes of a file or in a folder, the latest first."""
        with self.lock:
            return list(dict.fromkeys(
                result["by"] for result in reversed(self.results.values())
                if result.get("program") == program and ": " not in result["by"]
                and result["by"] not in self.skipped[program]
                and place in (Path(result["file"]), Path(result["file"]).parent)))

    def first_failure(self, tree, program, tests):
        """The one of these tests that failed, twice: once may be the machine's mood."""
        timeout = 30 + 5 * self.seconds[program]
        failed = tree.run(program, tests, timeout)
        if failed == "passed":
            return None
        is_test = failed not in ("timeout", "?")
        if is_test and tree.run(program, [f"--gtest_filter={failed}"], timeout) != "passed":
            return failed
        if tree.run(program, tests, 2 * timeout) == "passed":
            return None
        return failed if is_test else f"{Path(program).stem}: {failed}, twice"

    # --- all of them

    def run(self):
        waiting = queue.Queue()
        for mutant in self.mutants():
            waiting.put(mutant)
        trees = [Tree(REPOSITORY, Path(self.arguments.folder) / f"worker{i + 1}")
                 for i in range(self.arguments.workers)]
        for tree in trees:
            tree.prepare(self.arguments.stages)
            programs = self.needed(tree)
            tree.build_pristine(programs)
        if self.arguments.reach:
            self.find_reached(programs)
        self.measure(trees, programs)
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
                if known.get("result") != "killed" and \
                        not set(self.arguments.stages) <= set(known.get("tested", [])):
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
            if sample and not result:
                break  # what other samples know of those behind it would spoil this one
            same += bool(result) and result["result"] == "same code"
            if result and result["result"] not in NOT_COUNTED:
                results.append(dict(result, line=mutant.line))
            if sample and len(results) == sample:
                break
        show(self.arguments.seed, STAGES, results, same)
        killed = sum(result["result"] == "killed" for result in results)
        return bool(results) and killed >= GOAL * len(results)


def stages(text):
    names = text.split(",")
    if not set(names) <= set(STAGES):
        raise argparse.ArgumentTypeError(f"the stages are {', '.join(STAGES)}, not {text}")
    return [stage for stage in STAGES if stage in names]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("files", nargs="*", default=LAUNCHER,
                        help="files or folders of the product; those of the launcher without")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--sample", type=int, default=500, help="0: every place")
    parser.add_argument("--stages", type=stages, default=STAGES,
                        help="of the tests, with commas: " + ",".join(STAGES))
    parser.add_argument("--workers", type=int, default=1)
    parser.add_argument("--folder", default=REPOSITORY / "build/mutation", help="for the copies")
    parser.add_argument("--results", default=REPOSITORY / "build/mutation/results.jsonl")
    parser.add_argument("--reach", action="store_true",
                        help="find out first which tests enter which functions")
    parser.add_argument("--again", help="only the mutants of this results file")
    parser.add_argument("--list", action="store_true", help="show the places only")
    parser.add_argument("--report", action="store_true", help="show the results so far only")
    arguments = parser.parse_args()
    Path(arguments.folder).mkdir(parents=True, exist_ok=True)
    runner = Runner(arguments)
    for name in arguments.files:
        if not list(product_files([name])):
            parser.error(f"no source of the product: {name}")
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
