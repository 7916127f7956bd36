#!/usr/bin/env python3
"""The 32-bit programs import nothing that Windows XP lacks.

    imports_test.py FOLDER      the build folder's sources of the 32-bit build

Status 77: that build is not there.
"""

import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).resolve().parents[1] / "data/imports_of_windows_xp.txt"


def imports(program):
    text = subprocess.run(["i686-w64-mingw32-objdump", "-p", program], check=True,
                          capture_output=True, text=True).stdout
    library = ""
    for line in text.splitlines():
        if match := re.match(r"\s*DLL Name: (\S+)", line):
            library = match[1].lower()
        elif match := re.match(r"\t\s*[0-9a-f]+\t\s*\d+  (\S+)$", line):
            yield f"{library} {match[1]}"


def main(folder):
    programs = [path for path in pathlib.Path(folder).rglob("*.exe")]
    if not programs:
        print("the 32-bit build is not there")
        return 77
    allowed = set(LIST.read_text().splitlines())
    new = []
    for program in programs:
        found = sorted(set(imports(program)))
        print(f"{program.name}: {len(found)} imports")
        assert len(found) > 50, "objdump's output was not understood"
        new += [f"{program.name} imports {name}" for name in found if name not in allowed]
    print("\n".join(new))
    return 1 if new else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
