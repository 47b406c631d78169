"""A private copy of the sources with a build folder and a Wine prefix of its own."""

import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

LAUNCHER = ("fs", "platform", "launcher", "media", "installer")
MEDIATOOL = ("mediatool",)
PROGRAMS = ("launcher/setup.exe", "mediatool/mediatool.exe")
FUZZ = "fuzz"  # the fuzzers' folder in the build folder
MEMORY_LIMIT = 4 << 30  # bytes: a text that grows for ever must not take the machine with it
FILE_LIMIT = 1 << 30


def limit_resources():
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))


def is_fuzzer(program):
    return program.startswith(FUZZ + "/")


def object_code(file):
    """What an object file holds for the linker, without what the compiler keeps for itself."""
    with tempfile.NamedTemporaryFile(suffix=".obj") as copy:
        subprocess.run(["x86_64-w64-mingw32-objcopy", "--strip-debug", "-R", ".gnu.lto_*",
                        "-R", ".gnu.debuglto_*", file, copy.name], check=True)
        return Path(copy.name).read_bytes()


class Failure(Exception):
    pass


class Tree:
    def __init__(self, repository, folder):
        self.repository, self.folder = Path(repository), Path(folder)
        self.source = self.folder / "source"
        self.build_folder = self.folder / "build"
        self.pristine = self.folder / "pristine"
        # These two go back with the rest.
        self.release_folder = self.build_folder / "release"
        self.fuzz_folder = self.build_folder / FUZZ
        self.state = {}

    # --- making it

    def prepare(self, stages):
        """Copies what has changed, builds it and keeps the result to go back to."""
        self.copy_sources()
        self.configure("single_sources.cmake")
        if FUZZ in stages:
            self.call([self.source / "tools/install-tools.sh", "clang-14", "libclang-rt-14-dev"])
            self.call(["cmake", "-S", self.source / "tests/fuzz", "-B", self.fuzz_folder, "-G",
                       "Ninja", "-DCMAKE_CXX_COMPILER=clang++-14", "-DCMAKE_CXX_FLAGS=-w",
                       *self.compiler_launcher()])
        self.call(["cmake", "--preset", "mingw", "-B", self.release_folder,
                   "-DLAUNCHER_BUILD_TESTS=OFF", "-DLAUNCHER_BUILD_TOOLS=ON",
                   "-DCMAKE_CXX_FLAGS=-w", *self.compiler_launcher()])

    def prepare_traced(self):
        """The same with programs that write down which functions they enter."""
        self.copy_sources()
        self.configure("reached.cmake")

    def configure(self, script):
        # By Clang, whose linker needs less than a second where GNU's needs 17. Without debug
        # information and with tests compiled several at a time, for the linker's sake, too, and
        # without warnings: a change is no mistake of style.
        self.call([self.source / "tools/install-tools.sh", "clang", "lld"])
        self.call(["cmake", "--preset", "clang-debug", "-B", self.build_folder,
                   "-DLAUNCHER_JOIN_SOURCES=ON", "-DCMAKE_PROJECT_INCLUDE=" +
                   str(self.source / "tools/mutation" / script),
                   "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -w", *self.compiler_launcher()])

    @staticmethod
    def compiler_launcher():
        return ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []

    def build_pristine(self, programs):
        """Builds these test programs and the release as they are, to go back to."""
        self.build_or_fail(programs)
        self.released = self.release()
        self.take_snapshot()
        self.start_wine()

    def build_or_fail(self, programs):
        if not self.build(programs) or not self.build_fuzzers(programs):
            raise Failure("the sources do not build as they are:\n" + self.output[-4000:])

    def start_wine(self):
        """Here rather than with the first test, which has a time limit."""
        self.call([self.source / "tools/wine-run.sh", self.build_folder / "wine-prefix", "cmd.exe",
                   "/c", "exit"])

    def copy_sources(self):
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=self.repository, check=True, capture_output=True, text=True).stdout.split("\0")
        wanted = {name for name in listed if name and (self.repository / name).is_file()}
        for path in list(self.source.rglob("*")):
            if path.is_file() and str(path.relative_to(self.source)) not in wanted:
                path.unlink()
        for name in wanted:
            original, copy = self.repository / name, self.source / name
            if not copy.exists() or copy.read_bytes() != original.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(original, copy)

    def built_files(self):
        for folder, folders, names in os.walk(self.build_folder):
            folders[:] = [name for name in folders if name not in ("wine-prefix", "Testing")]
            for name in names:
                path = Path(folder, name)
                status = path.lstat()
                yield str(path.relative_to(self.build_folder)), (status.st_size, status.st_mtime_ns)

    def take_snapshot(self):
        shutil.rmtree(self.pristine, ignore_errors=True)
        self.state = dict(self.built_files())
        for name in self.state:
            copy = self.pristine / name
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(self.build_folder / name, copy)

    # --- changing it

    def apply(self, mutant, source):
        path = self.source / mutant.file
        status = path.stat()
        self.changed = (path, source, status)
        path.write_bytes(mutant.apply(source).encode())

    def restore(self):
        """As it was before the change, times included: nothing has to be built again."""
        path, source, status = self.changed
        path.write_bytes(source.encode())
        os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))
        now = dict(self.built_files())
        for name in self.state.keys() | now.keys():
            if now.get(name) == self.state.get(name):
                continue
            if name in self.state:
                shutil.copy2(self.pristine / name, self.build_folder / name)
            else:
                (self.build_folder / name).unlink()

    def call(self, command):
        done = subprocess.run([str(part) for part in command], cwd=self.source, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.output = done.stdout
        if done.returncode != 0:
            raise Failure(f"{command}:\n{done.stdout[-4000:]}")

    def make(self, folder, targets):
        """False when something does not build; `output` says what."""
        try:
            self.call(["cmake", "--build", folder, "-j", "4"] +
                      [part for target in targets for part in ("--target", target)])
        except Failure:
            return False
        return True

    def build(self, programs):
        targets = [program for program in programs if not is_fuzzer(program)]
        return not targets or self.make(self.build_folder, targets)

    def build_fuzzers(self, programs):
        targets = [Path(program).name for program in programs if is_fuzzer(program)]
        return not targets or self.make(self.fuzz_folder, targets)

    def release(self):
        """The programs as they would be released: the same bytes as long as nothing in them
        changes."""
        self.call(["cmake", "--build", self.release_folder, "--target", "setup", "mediatool"])
        return [(self.release_folder / program).read_bytes() for program in PROGRAMS]

    def is_same_code(self):
        """Whether the change leaves the released programs as they are, or the object code that
        they are made of, which the optimisation across files may put together in another way."""
        if self.release() == self.released:
            return True
        objects = [name for name, status in self.built_files() if name.endswith(".obj")
                   and name.startswith("release/") and status != self.state[name]]
        return bool(objects) and all(
            object_code(self.build_folder / name) == object_code(self.pristine / name)
            for name in objects)

    # --- testing it

    def test_programs(self):
        """Every test program by its path in the build folder, and every fuzzer."""
        self.call(["ninja", "-C", self.build_folder, "-t", "targets", "all"])
        programs = re.findall(r"^(tests/\S+_test\.exe):", self.output, re.MULTILINE)
        corpus = self.source / "tests/fuzz/corpus"
        return sorted(programs) + sorted(f"{FUZZ}/{folder.name}" for folder in corpus.iterdir())

    def was_rebuilt(self, program):
        """Whether the changed code is in it."""
        status = (self.build_folder / program).stat()
        return self.state.get(program) != (status.st_size, status.st_mtime_ns)

    def objects_of(self, file):
        """The object files that are compiled of one source, as build targets."""
        return [name for name in self.state if name.endswith(f"/{Path(file).name}.obj")
                and name.startswith(f"{Path(file).parent}/CMakeFiles")]

    def log_of(self, program):
        """What its last run said."""
        return self.folder / f"{Path(program).stem}.txt"

    def run(self, program, arguments, timeout, environment=None):
        """"passed", "timeout" or the name of the first failed test ("?" after a crash)."""
        log = self.log_of(program)
        command = [self.source / "tools/wine-run.sh", self.build_folder / "wine-prefix",
                   self.build_folder / program, "--gtest_fail_fast", *arguments]
        limits = limit_resources
        if is_fuzzer(program):  # with limits of its own: a sanitizer needs all addresses
            command = [self.build_folder / program, "-runs=0", "-detect_leaks=0",
                       "-exact_artifact_path=/dev/null",
                       self.source / "tests/fuzz/corpus" / Path(program).name]
            limits = None
        with open(log, "wb") as output:
            process = subprocess.Popen(
                [str(part) for part in command], cwd=(self.build_folder / program).parent,
                stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                env=dict(os.environ, **(environment or {})), start_new_session=True,
                preexec_fn=limits)
            try:
                status = process.wait(timeout)
            except subprocess.TimeoutExpired:
                self.end_processes(process)
                return "timeout"
        if is_fuzzer(program):
            return "passed" if status == 0 else "?"
        text = log.read_text(errors="replace")
        if status == 0 and "[  PASSED  ]" in text:
            return "passed"
        failed = re.search(r"^\[  FAILED  \] ([^\s,]+\.[^\s,]+)", text, re.MULTILINE)
        running = re.findall(r"^\[ RUN      \] (\S+)", text, re.MULTILINE)
        return failed.group(1) if failed else running[-1] if running else "?"

    def end_processes(self, process):
        """What a hanging test leaves: it and all else that runs in this prefix."""
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        prefix = dict(os.environ, WINEPREFIX=str(self.build_folder / "wine-prefix"))
        subprocess.run(["wineserver", "-k"], env=prefix, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=False)
        time.sleep(1)
