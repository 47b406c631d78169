#!/usr/bin/env python3
"""Compares docs/windows-calls.md with the product's sources, its executables and the tests.

    check-windows-calls.py SETUP-EXE MEDIATOOL-EXE [OBJDUMP]

Fails when an executable imports a Windows function, or the sources look one up, that its tables do
not have; when a table has one that is no longer there, or names other sources than those with the
call; and when a test named there does not exist. Of mediatool the functions that change something
count: what it calls itself has a row in its own table, and the rest of them is either in the
launcher's tables, as part of its layers, or in a list of what the libraries import.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TABLE = ROOT / "docs/windows-calls.md"
LAUNCHER = ("fs", "platform", "launcher", "media", "installer")
MEDIATOOL = ("mediatool",)
MEDIATOOL_HEADING = "\n## mediatool\n"
CHANGES = re.compile("Copy|Create(?!FileMapping)|Delete|Move|Remove|Reg|Replace|Set(?!LastError)|"
                     "Shell|Write")
C_RUNTIME = re.compile(r"msvcrt|ucrt|vcruntime|api-ms-win-crt", re.IGNORECASE)
BY_NUMBER = {("shlwapi.dll", 219): "QISearch"}
COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|L?"(?:[^"\\\n]|\\.)*"', re.DOTALL)


def imports(executable, objdump):
    """The names of the functions that the executable imports from the system's libraries."""
    listing = subprocess.run([objdump, "-p", executable], check=True, capture_output=True,
                             text=True).stdout
    names, library = set(), ""
    for line in listing.splitlines():
        if match := re.match(r"\s*DLL Name: (\S+)", line):
            library = match.group(1).lower()
        elif match := re.match(r"\t([0-9a-f]+)\t\s*\S+\s+(\S+)", line):
            name = match.group(2)
            if name == "<none>":  # the low 16 bits are the function's number
                number = int(match.group(1), 16) & 0xFFFF
                name = BY_NUMBER.get((library, number), f"{library} {number}")
            if not C_RUNTIME.search(library):
                names.add(name)
    return names


class Sources:
    """The product's sources in some folders."""

    def __init__(self, folders):
        files = [path for folder in folders for path in sorted((ROOT / folder).rglob("*"))
                 if path.suffix in (".cpp", ".h")]
        self.text = {path.relative_to(ROOT).as_posix(): path.read_text() for path in files}
        self.code = {file: COMMENT_OR_TEXT.sub(" ", text) for file, text in self.text.items()}

    def looked_up(self):
        """The names that GetProcAddress is asked for."""
        names = set()
        for text in self.text.values():
            names |= set(re.findall(r'(?:GetProcAddress|ComFunction<[^;]*?>|ModuleFunction<[^;]*?>)'
                                    r'\s*\([^;"]*(?:L"\w+",\s*)?"(\w+)"\)', text))
        return names

    def callers(self, name):
        call = re.compile(rf"\b{name}\b(?!\s*>)\s*[(\"]")
        by_name = re.compile(rf'"{name}"')
        return {file for file in self.code
                if call.search(self.code[file]) or by_name.search(self.text[file])}


class Table:
    """A part of the document: `called`, the sources with the calls of each function of its tables,
    and `runtime`, the functions that its list, if it has one, says are imported by others alone."""

    def __init__(self, text):
        self.called = {}
        tables, *listed = text.split("```")
        self.runtime = set(listed[0].split()) if listed else set()
        for line in tables.splitlines():
            cells = [cell.strip() for cell in line.split("|")[1:-1]]
            if len(cells) > 1 and re.fullmatch(r"`\w+`", cells[0]):
                files = self.called.setdefault(cells[0].strip("`"), set())
                files.update(name.strip() for name in cells[1].split(","))

    def faults(self, names, sources, elsewhere):
        """What differs between the table, the `names` that are imported or looked up, and their
        calls in the sources. Those in `elsewhere` may also be called from there only."""
        called, runtime = self.called, self.runtime
        for name in sorted(names):
            files = sources.callers(name)
            if files and name not in called:
                yield f"{name}: called in {', '.join(sorted(files))}, but not in a table"
            elif not files and name not in runtime | elsewhere:
                yield f"{name}: imported, but in no table"
        for name, files in sorted(called.items()):
            callers = sources.callers(name)
            if name not in names:
                yield f"{name}: in a table, but neither imported nor looked up"
            elif files != callers:
                yield (f"{name}: the table says {', '.join(sorted(files))}, the sources "
                       f"{', '.join(sorted(callers)) or 'nothing'}")
        for name in sorted(runtime):
            if name not in names:
                yield f"{name}: listed for the runtime, but not imported"
            elif sources.callers(name):
                yield f"{name}: listed for the runtime, but called"


def tests():
    """Every test of the sources, as Suite.Test."""
    names = set()
    for path in (ROOT / "tests").rglob("*.cpp"):
        names |= {".".join(pair) for pair in
                  re.findall(r"\bTEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", path.read_text())}
    return names


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: check-windows-calls.py SETUP-EXE MEDIATOOL-EXE [OBJDUMP]")
    objdump = sys.argv[3] if len(sys.argv) > 3 else "x86_64-w64-mingw32-objdump"
    text = TABLE.read_text()
    launcher, mediatool = (Table(part) for part in text.split(MEDIATOOL_HEADING))

    sources = Sources(LAUNCHER)
    faults = list(launcher.faults(imports(sys.argv[1], objdump) | sources.looked_up(), sources, set()))

    sources = Sources(MEDIATOOL)
    names = {name for name in imports(sys.argv[2], objdump) | sources.looked_up()
             if CHANGES.match(name)}
    faults += [f"mediatool: {fault}" for fault in
               mediatool.faults(names, sources, set(launcher.called) | launcher.runtime)]

    named = set(re.findall(r"`(\w+\.\w+)`", text))
    faults += [f"{name}: no such test" for name in sorted(named - tests())
               if not name.endswith((".h", ".cpp"))]
    for fault in faults:
        print(fault)
    if not faults:
        print(f"docs/windows-calls.md: {len(launcher.called)} functions of the launcher, "
              f"{len(mediatool.called)} of mediatool, {len(named)} tests, "
              f"{len(launcher.runtime | mediatool.runtime)} imports of the runtime")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
