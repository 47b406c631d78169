"""A private copy of the sources with a build folder and a Wine prefix of its own."""

import os
import re
import resource
import shutil
import signal
import subprocess
import time
from pathlib import Path

PRODUCT = ("fs", "platform", "launcher", "media", "installer")
MEMORY_LIMIT = 4 << 30  # bytes: a text that grows for ever must not take the machine with it
FILE_LIMIT = 1 << 30


def limit_resources():
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))


class Failure(Exception):
    pass


class Tree:
    def __init__(self, repository, folder):
        self.repository, self.folder = Path(repository), Path(folder)
        self.source = self.folder / "source"
        self.build_folder = self.folder / "build"
        self.pristine = self.folder / "pristine"
        self.release_folder = self.build_folder / "release"  # goes back with the rest
        self.state = {}

    # --- making it

    def prepare(self, layers_only):
        """Copies what has changed, builds it and keeps the result to go back to."""
        self.copy_sources()
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        # Without debug information and with tests compiled several at a time, as linking takes the
        # longest, and without warnings: a change is no mistake of style. Where a test has its own
        # version of a product function, its own counts, even when the linker needs something else
        # of the product's object.
        self.call(["cmake", "--preset", "mingw-debug", "-B", self.build_folder,
                   "-DLAUNCHER_JOIN_SOURCES=ON",
                   "-DCMAKE_CXX_FLAGS=-w", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                   "-DCMAKE_EXE_LINKER_FLAGS=-Wl,--allow-multiple-definition", *launcher])
        if not self.build(self.programs() if layers_only else []):
            raise Failure("the sources do not build as they are:\n" + self.output[-4000:])
        self.call(["cmake", "--preset", "mingw", "-B", self.release_folder,
                   "-DLAUNCHER_BUILD_TESTS=OFF", "-DCMAKE_CXX_FLAGS=-w"])
        self.released = self.release()
        self.take_snapshot()
        # Here rather than with the first test, which has a time limit.
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

    def build(self, targets):
        """False when something does not build; `output` says what."""
        try:
            self.call(["cmake", "--build", self.build_folder, "-j", "4"] +
                      [part for target in targets for part in ("--target", target)])
        except Failure:
            return False
        return True

    def release(self):
        """The launcher as it would be released: the same bytes as long as nothing in it changes."""
        self.call(["cmake", "--build", self.release_folder, "--target", "setup"])
        return (self.release_folder / "launcher/setup.exe").read_bytes()

    def is_same_program(self):
        return self.release() == self.released

    # --- testing it

    def programs(self):
        """The test programs of the layers, by their path in the build folder."""
        return [program for program in self.all_programs() if program.split("/")[1] in PRODUCT]

    def all_programs(self):
        self.call(["ninja", "-C", self.build_folder, "-t", "targets", "all"])
        return sorted(re.findall(r"^(tests/\S+_test\.exe):", self.output, re.MULTILINE))

    def was_rebuilt(self, program):
        status = (self.build_folder / program).stat()
        return self.state.get(program) != (status.st_size, status.st_mtime_ns)

    def objects_of(self, file):
        """The object files that are compiled of one source, as build targets."""
        return [name for name in self.state if name.endswith(f"/{Path(file).name}.obj")
                and name.startswith(f"{Path(file).parent}/CMakeFiles")]

    def run(self, program, arguments, timeout):
        """"passed", "timeout" or the name of the first failed test ("?" after a crash)."""
        log = self.folder / "output.txt"
        command = [self.source / "tools/wine-run.sh", self.build_folder / "wine-prefix",
                   self.build_folder / program, "--gtest_fail_fast", *arguments]
        with open(log, "wb") as output:
            process = subprocess.Popen(
                [str(part) for part in command], cwd=(self.build_folder / program).parent,
                stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                start_new_session=True, preexec_fn=limit_resources)
            try:
                status = process.wait(timeout)
            except subprocess.TimeoutExpired:
                self.end_processes(process)
                return "timeout"
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
