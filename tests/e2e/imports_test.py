#!/usr/bin/env python3
"""The 32-bit programs import nothing that Windows XP lacks.

    imports_test.py OBJDUMP PROGRAM...
"""

import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).resolve().parents[1] / "data/imports_of_windows_xp.txt"


def imports(objdump, program):
    text = subprocess.run([objdump, "-p", program], check=True, capture_output=True,
                          text=True).stdout
    library = ""
    for line in text.splitlines():
        if match := re.match(r"\s*DLL Name: (\S+)", line):
            library = match[1].lower()
        elif match := re.match(r"\t\s*[0-9a-f]+\t\s*\d+  (\S+)$", line):
            yield f"{library} {match[1]}"


def main(objdump, *programs):
    allowed = set(LIST.read_text().splitlines())
    new = []
    for program in programs:
        found = sorted(set(imports(objdump, program)))
        print(f"{program}: {len(found)} imports")
        assert len(found) > 50, "objdump's output was not understood"
        new += [f"{program} imports {name}" for name in found if name not in allowed]
    print("\n".join(new))
    return 1 if new else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
