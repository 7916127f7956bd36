#!/usr/bin/env python3
"""The 32-bit programs import nothing that Windows XP lacks; the 64-bit ones load nothing early
that they need later only.

    imports_test.py OBJDUMP PROGRAM...
"""

import pathlib
import re
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parents[2]
LIST = TOP / "tests/data/imports_of_windows_xp.txt"
DELAYED = TOP / "cmake/delayed"
AT_THE_START = {"veskbuild": {"kernel32", "msvcrt"},
                "veskbuilder": {"kernel32", "msvcrt", "comctl32", "gdi32", "gdiplus", "oleaut32", "user32"}}


def imports(objdump, program):
    text = subprocess.run([objdump, "-p", program], check=True, capture_output=True,
                          text=True).stdout
    library = ""
    for line in text.splitlines():
        if match := re.match(r"\s*DLL Name: (\S+)", line):
            library = match[1].lower()
        elif match := re.match(r"\t\s*[0-9a-f]+\t\s*\d+  (\S+)$", line):
            yield f"{library} {match[1]}"


def delayed_imports(program):
    """The tool that lists a program's imports says nothing of those that are loaded late."""
    content = program.read_bytes()
    for definition in DELAYED.glob("*.def"):
        for name in re.findall(r"^(\w+)(?:@\d+)?$", definition.read_text(), re.MULTILINE):
            if name != "EXPORTS" and b"\0" + name.encode() + b"\0" in content:
                yield f"{definition.stem}.dll {name}"


def main(objdump, *programs):
    allowed = set(LIST.read_text().splitlines())
    new = []
    for program in map(pathlib.Path, programs):
        found = sorted(set(imports(objdump, program)))
        print(f"{program.name}: {len(found)} imports")
        assert len(found) > 50, "objdump's output was not understood"
        if b"PE\0\0\x4c\x01" in program.read_bytes()[:1024]:  # 32 bits: what Windows XP runs
            new += [f"{program.name} imports {name}" for name in found if name not in allowed]
            continue
        late = sorted(set(delayed_imports(program)))
        print(f"{program.name}: {len(late)} imports that are loaded late")
        assert len(late) > 50, late
        new += [f"{program.name} imports {name} at its start" for name in found
                if name.split(".")[0] not in AT_THE_START[program.stem]]
    print("\n".join(new))
    return 1 if new else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
