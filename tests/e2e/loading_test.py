#!/usr/bin/env python3
"""The delivered programs cannot be led to code of others: by what lies beside them, or by where
things stand in memory."""

import re
import subprocess
import sys
import unittest

from program import PROGRAMS, ProgramTest

# What every Windows takes from its own folder, whatever lies beside a program: the libraries that it
# knows by name, and those that stand side by side, which a manifest names: the program's own the
# controls, the system's own GDI+.
SAFE = {"advapi32", "comctl32", "comdlg32", "gdi32", "gdiplus", "kernel32", "msvcrt", "ole32", "oleaut32",
        "shell32", "user32", "ws2_32"}
LOADED = ("advpack", "cabinet", "cryptsp", "rsaenh", "wininet")
FLAGS = {"HIGH_ENTROPY_VA": 0x20, "DYNAMIC_BASE": 0x40, "NX_COMPAT": 0x100,
         "TERMINAL_SERVICE_AWARE": 0x8000}


class Loading(ProgramTest):
    def test_the_files(self):
        programs = sorted(PROGRAMS.parent.rglob("vesk*.exe"))
        self.assertEqual([path.name for path in programs], ["veskbuild.exe", "veskbuilder.exe"])
        for program in programs:
            text = subprocess.run(["x86_64-w64-mingw32-objdump", "-ph", program], check=True,
                                  capture_output=True, text=True).stdout
            flags = int(re.search(r"DllCharacteristics\s+([0-9a-f]+)", text)[1], 16)
            libraries = {name.lower() for name in re.findall(r"DLL Name: (\S+)\.dll", text, re.I)}
            with self.subTest(program.name):
                wanted = set(FLAGS) - ({"HIGH_ENTROPY_VA"} if "pei-i386" in text else set())
                self.assertEqual(wanted - {name for name, bit in FLAGS.items() if flags & bit}, set())
                self.assertIn(".reloc", text)  # without which nothing can stand elsewhere
                self.assertIn("kernel32", libraries)
                self.assertEqual(libraries - SAFE, set())

    def test_what_lies_beside_the_program(self):
        digest = "0" * 64
        self.write_small_catalogue()
        (self.program / "veskbuilder.sha256").write_text(f"{digest}  one.zip\n")
        for name in LOADED:
            (self.program / f"{name}.dll").write_text("no library")
        for folder in (self.folder, self.program):
            code, _, errors = self.run_program("--list", cwd=folder)
            self.assertEqual((code, errors), (0, ""))
        code, lines, errors = self.build()
        self.assertEqual(code, 1)
        self.assertIn(f"expected {digest}, found ", errors)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
