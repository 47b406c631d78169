#!/usr/bin/env python3
"""Compares docs/windows-calls.md with the product's sources, its executable and the tests.

    check-windows-calls.py SETUP-EXE [OBJDUMP]

Fails when the executable imports a Windows function, or the sources look one up, that the tables do
not have; when a table has one that is no longer there, or names other sources than those with the
call; and when a test named there does not exist.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TABLE = ROOT / "docs/windows-calls.md"
PRODUCT = ("fs", "platform", "launcher", "media", "installer")
RUNTIME_HEADING = "## Imports of the runtime alone"
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


def sources():
    """The text of each product source, and the same without comments and texts."""
    for folder in PRODUCT:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                text = path.read_text()
                yield path.relative_to(ROOT).as_posix(), text, COMMENT_OR_TEXT.sub(" ", text)


def looked_up():
    """The names that the sources ask GetProcAddress for."""
    names = set()
    for _, text, _ in sources():
        names |= set(re.findall(r'(?:GetProcAddress|ComFunction<[^;]*?>|ModuleFunction<[^;]*?>)'
                                r'\s*\([^;"]*(?:L"\w+",\s*)?"(\w+)"\)', text))
    return names


def table_rows():
    """(function, the sources with its calls) of each row; none for the runtime's imports."""
    tables, runtime = TABLE.read_text().split(RUNTIME_HEADING)
    for name in runtime.split("```")[1].split():
        yield name, None
    for line in tables.splitlines():
        cells = [cell.strip() for cell in line.split("|")[1:-1]]
        if len(cells) > 1 and re.fullmatch(r"`\w+`", cells[0]):
            yield cells[0].strip("`"), {name.strip() for name in cells[1].split(",")}


def tests():
    """Every test of the sources, as Suite.Test."""
    names = set()
    for path in (ROOT / "tests").rglob("*.cpp"):
        names |= {".".join(pair) for pair in
                  re.findall(r"\bTEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)", path.read_text())}
    return names


def main():
    executable = sys.argv[1]
    objdump = sys.argv[2] if len(sys.argv) > 2 else "x86_64-w64-mingw32-objdump"
    faults = []
    imported, found_by_name = imports(executable, objdump), looked_up()
    code = {file: stripped for file, _, stripped in sources()}
    quoted = {file: text for file, text, _ in sources()}
    called, runtime = {}, set()
    for name, files in table_rows():
        if files is None:
            runtime.add(name)
        else:
            called.setdefault(name, set()).update(files)

    def callers(name):
        call = re.compile(rf"\b{name}\b(?!\s*>)\s*[(\"]")
        by_name = re.compile(rf'"{name}"')
        return {file for file in code if call.search(code[file]) or by_name.search(quoted[file])}

    for name in sorted(imported | found_by_name):
        files = callers(name)
        if files and name not in called:
            faults.append(f"{name}: called in {', '.join(sorted(files))}, but not in a table")
        elif not files and name not in runtime:
            faults.append(f"{name}: imported, but in no table")
    for name, files in sorted(called.items()):
        if name not in imported | found_by_name:
            faults.append(f"{name}: in a table, but neither imported nor looked up")
        elif files != callers(name):
            faults.append(f"{name}: the table says {', '.join(sorted(files))}, the sources "
                          f"{', '.join(sorted(callers(name))) or 'nothing'}")
    faults += [f"{name}: listed for the runtime, but not imported"
               for name in sorted(runtime - imported)]
    faults += [f"{name}: listed for the runtime, but called"
               for name in sorted(runtime) if callers(name)]
    named = set(re.findall(r"`(\w+\.\w+)`", TABLE.read_text()))
    faults += [f"{name}: no such test" for name in sorted(named - tests())
               if not name.endswith((".h", ".cpp"))]
    for fault in faults:
        print(fault)
    if not faults:
        print(f"docs/windows-calls.md: {len(called)} functions, {len(named)} tests, "
              f"{len(runtime)} imports of the runtime")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
