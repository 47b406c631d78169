"""Which tests enter which functions of the product: what a changed line is tested by.

Each test is run alone in a build whose functions write down that they were entered (reached.cpp);
what the line table says of these functions makes lines of them. A test that was written afterwards,
a source that was changed and a line outside all functions are not known: all tests are asked then.
"""

import bisect
import collections
import concurrent.futures
import hashlib
import json
import re
import shutil
import subprocess
import time

from mutation.tree import PROGRAMS

ADDRESSES_OF_A_BYTE = 16
PROGRAMS_AT_ONCE = 4  # their tests mostly wait
ROW = re.compile(r"(\S.*?)\s+(\d+)\s+0x([0-9a-f]+)\b.*")


def fingerprint(source):
    return hashlib.sha1(source.encode()).hexdigest()


def output_of(tool, *arguments):
    return subprocess.run([f"x86_64-w64-mingw32-{tool}", *arguments], check=True,
                          capture_output=True, text=True, errors="replace").stdout


class Functions:
    """Those of a program, and the lines that each has of the product's sources."""

    def __init__(self, program, sources):
        header = dict(re.findall(r"^(ImageBase|SizeOfImage)\s+([0-9a-f]+)$",
                                 output_of("objdump", "-p", program), re.MULTILINE))
        self.image, self.size = (int(header[name], 16) for name in ("ImageBase", "SizeOfImage"))
        self.starts = sorted({int(line.split()[0], 16)
                              for line in output_of("nm", program).splitlines()
                              if line.split()[-2] in "tT"})
        self.lines = collections.defaultdict(lambda: (1 << 31, 0))  # by start and source
        source = None
        for line in output_of("objdump", "-w", "--dwarf=decodedline", program).splitlines():
            if re.search(r"(:|\[\+\+\])$", line):
                path = re.sub(r"(:|:?\[\+\+\])$", "", line)
                source = next((name for name in sources if path.endswith("/" + name)
                               and "/tests/" not in path), None)
            elif source and (row := ROW.fullmatch(line)) and int(row[2]) > 0:
                place = (self.containing(int(row[3], 16)), source)
                first, last = self.lines[place]
                self.lines[place] = (min(first, int(row[2])), max(last, int(row[2])))

    def containing(self, address):
        return self.starts[bisect.bisect_right(self.starts, address) - 1]

    def entered(self, folder):
        """The starts of those that the processes of one test entered."""
        marks = folder / str(self.size)
        if not marks.exists():
            return set()
        return {self.containing(self.image + ADDRESSES_OF_A_BYTE * (mark.start() + 1) - 1)
                for mark in re.finditer(b"\1", marks.read_bytes())}


class Reached:
    def __init__(self, file):
        self.file = file
        self.read()

    def read(self):
        known = json.loads(self.file.read_text()) if self.file.exists() else {}
        self.sources = known.get("sources", {})  # each one's fingerprint
        self.tests = known.get("tests", {})      # by program
        # By source: first line, last line, and the tests by program.
        self.functions = known.get("functions", {})
        self.entered_by = collections.Counter(
            (program, test) for places in self.functions.values() for *_, by_program in places
            for program, tests in by_program.items() for test in tests)

    # --- finding out

    def find(self, tree, programs, sources):
        """`tree`: a traced one, in which these programs are built."""
        built = [tree.build_folder / program for program in (*programs, *PROGRAMS)
                 if (tree.build_folder / program).exists()]
        functions = [Functions(path, sources) for path in built]
        assert len({program.size for program in functions}) == len(functions), "two of one size"
        self.tests = {program: self.tests_in(tree, program) for program in programs}
        tests_of = collections.defaultdict(lambda: collections.defaultdict(list))

        def run_all(program):
            folder = tree.folder / "entered" / program.replace("/", "_")
            start = time.monotonic()
            for test in list(self.tests[program]):
                shutil.rmtree(folder, ignore_errors=True)
                folder.mkdir(parents=True)
                outcome = tree.run(program, [f"--gtest_filter={test}"], 600,
                                   {"REACHED_FOLDER": "Z:" + str(folder).replace("/", "\\")})
                if outcome != "passed":
                    # Asked for every change, like a test that was written afterwards.
                    print(f"does not pass in this build: {program} {test}, {outcome}", flush=True)
                    self.tests[program].remove(test)
                    continue
                for number, entered in enumerate(functions):
                    for function in entered.entered(folder):
                        tests_of[number, function][program].append(test)
            shutil.rmtree(folder)
            print(f"{time.monotonic() - start:6.1f} s  {program}, {len(self.tests[program])} tests, "
                  "one by one", flush=True)

        with concurrent.futures.ThreadPoolExecutor(PROGRAMS_AT_ONCE) as pool:
            list(pool.map(run_all, programs))
        found = collections.defaultdict(lambda: collections.defaultdict(
            lambda: collections.defaultdict(set)))
        for number, program in enumerate(functions):
            for (function, source), lines in program.lines.items():
                place = found[source][lines]
                for of, tests in tests_of.get((number, function), {}).items():
                    place[of].update(tests)
        self.functions = {
            source: [[*lines, {program: sorted(tests) for program, tests in by_program.items()}]
                     for lines, by_program in sorted(places.items())]
            for source, places in found.items()}
        self.file.write_text(json.dumps({
            "sources": {name: fingerprint(text) for name, text in sources.items()},
            "tests": self.tests, "functions": self.functions}))
        self.read()

    @staticmethod
    def tests_in(tree, program):
        tree.run(program, ["--gtest_list_tests"], 60, {})
        tests, suite = [], ""
        for line in tree.log_of(program).read_text(errors="replace").splitlines():
            if line.startswith("  "):
                tests.append(suite + line.split()[0])
            elif line.endswith(".") or ".  #" in line:
                suite = line.split()[0]
        return tests

    # --- what was found

    def tests_for(self, program, mutant, source):
        """The tests of `program` that enter a function with the changed line, those first that enter
        few others; None: not known."""
        if self.sources.get(mutant.file) != fingerprint(source) or program not in self.tests:
            return None
        entered = [by_program for first, last, by_program in self.functions.get(mutant.file, ())
                   if first <= mutant.line <= last]
        if not any(entered):
            return None
        return sorted({test for by_program in entered for test in by_program.get(program, ())},
                      key=lambda test: self.entered_by[program, test])
