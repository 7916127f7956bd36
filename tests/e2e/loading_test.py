#!/usr/bin/env python3
"""What the system reads of the delivered programs: rights, version, icon, imports. They load nothing early
that they need later only, and the 32-bit ones nothing that Windows XP lacks. They cannot be led to code of
others: by what lies beside them, or by where things stand in memory."""

import os
import re
import shutil
import struct
import subprocess
import time
import unittest

from fixtures import TOP, Member, run_whole, windows_path, write_cab
from program import INF, PROGRAMS, WINE, ProgramTest

# What every Windows takes from its own folder, whatever lies beside a program: the libraries that it
# knows by name, and those that stand side by side, which a manifest names: the program's own the
# controls, the system's own GDI+.
SAFE = {"advapi32", "comctl32", "comdlg32", "gdi32", "gdiplus", "kernel32", "msvcrt", "ole32", "oleaut32",
        "shell32", "user32", "ws2_32"}
# What is loaded late, by the linker or by its path. Cabinets that are not pressed need no library, and
# whether there is a network is asked only when PE Builder's archive is to be downloaded.
LATE = {definition.stem for definition in (TOP / "cmake/delayed").glob("*.def")} | {
    "advpack", "cabinet", "cryptsp", "dwmapi", "rsaenh", "version", "wininet"}
# Those of them that Wine's own libraries take while the wizard is being started.
EARLY = {"advapi32", "ole32", "user32", "version"}
SEARCH = re.compile(r'load_dll looking for L"(.+?)" in (.*)')
FLAGS = {"HIGH_ENTROPY_VA": 0x20, "DYNAMIC_BASE": 0x40, "NX_COMPAT": 0x100,
         "TERMINAL_SERVICE_AWARE": 0x8000}
RIGHTS = {"veskbuild": "asInvoker", "veskbuilder": "requireAdministrator"}
ICON, VERSION, MANIFEST = 14, 16, 24  # kinds of resources
OF_WINDOWS_XP = set((TOP / "tests/data/imports_of_windows_xp.txt").read_text().splitlines())
AT_THE_START = {"veskbuild": {"kernel32", "msvcrt"},
                "veskbuilder": {"kernel32", "msvcrt", "comctl32", "gdi32", "gdiplus", "oleaut32", "user32"}}


def imports(text):
    """Library to functions, as objdump shows them."""
    parts = re.split(r"DLL Name: (\S+)\.dll", text, flags=re.IGNORECASE)[1:]
    return {name.lower(): re.findall(r"^\t\s*[0-9a-f]+\t\s*\d+  (\S+)$", part, re.MULTILINE)
            for name, part in zip(parts[::2], parts[1::2])}


def delayed_imports(content):
    """objdump says nothing of what is loaded late."""
    listed = [(definition.stem, name) for definition in (TOP / "cmake/delayed").glob("*.def")
              for name in re.findall(r"^(\w+)$", definition.read_text(), re.MULTILINE)]
    return {f"{library}.dll {name}" for library, name in listed
            if name != "EXPORTS" and f"\0{name}\0".encode() in content}


class Loading(ProgramTest):
    def test_the_files(self):
        programs = sorted(PROGRAMS.parent.rglob("vesk*.exe"))
        self.assertEqual([path.name for path in programs], ["veskbuild.exe", "veskbuilder.exe"])
        for program in programs:
            text = run_whole(["x86_64-w64-mingw32-objdump", "-ph", program]).stdout
            flags = int(re.search(r"DllCharacteristics\s+([0-9a-f]+)", text)[1], 16)
            with self.subTest(program.name):
                wanted = set(FLAGS) - ({"HIGH_ENTROPY_VA"} if "pei-i386" in text else set())
                self.assertEqual(wanted - {name for name, bit in FLAGS.items() if flags & bit}, set())
                self.assertIn(".reloc", text)  # without which nothing can stand elsewhere
                self.assertIn("large address aware", text)
                kinds = {int(kind, 16) for kind in re.findall(r"(?m)^0.. +Entry: ID: 0x(\w+)", text)}
                self.assertEqual({ICON, VERSION, MANIFEST} - kinds, set())
                self.look_at_imports(program, imports(text), "pei-i386" in text)
                self.look_at_resources(program.stem, program.read_bytes())

    def look_at_imports(self, program, found, is_32_bit):
        self.assertEqual(set(found) - SAFE, set())
        self.assertEqual(set(found) - AT_THE_START[program.stem], set())
        named = {f"{library}.dll {name}" for library, names in found.items() for name in names}
        self.assertGreater(len(named), 50, "objdump's output was not understood")
        delayed = delayed_imports(program.read_bytes())
        self.assertGreater(len(delayed), 50)
        if is_32_bit:
            self.assertEqual((named | delayed) - OF_WINDOWS_XP, set())

    def look_at_resources(self, name, data):
        self.assertIn(f'level="{RIGHTS[name]}"'.encode(), data)
        self.assertEqual(b">PerMonitorV2, system<" in data, name == "veskbuilder")
        wanted = re.search(r"project\(\w+ VERSION (\S+)", (TOP / "CMakeLists.txt").read_text())[1]
        record = data.index(struct.pack("<I", 0xFEEF04BD))
        minor, major, tweak, patch = struct.unpack_from("<4H", data, record + 8)
        self.assertEqual(f"{major}.{minor}.{patch}.{tweak}", wanted)
        for text in (wanted, f"{name}.exe"):
            self.assertIn(f"\0{text}\0".encode("utf-16-le"), data[record:])

    def plant(self):
        """Files beside the program with the names of libraries that it loads late; a build that needs them."""
        write_cab(self.program / "pressed.cab", [Member("pressed.inf", INF)], pressed=True)
        self.write_small_catalogue("100", "Pressed", 1, 1, *self.raw("pressed.cab"))
        (self.program / "veskbuilder.sha256").write_text(f"{'0' * 64}  one.zip\n")
        for name in LATE:
            (self.program / f"{name}.dll").write_text("no library")

    def searches(self, program, *arguments, until=None):
        """What a program asks the system's loader for from the first library that it asks for itself:
        names and the folders that are searched."""
        said = self.folder / "said"
        with open(said, "wb") as file, subprocess.Popen(
                [*WINE, str(self.program / program), *arguments], cwd=self.program, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=file, env=os.environ | {"WINEDEBUG": "+module"}) as process:
            end = time.monotonic() + 120
            while process.poll() is None and time.monotonic() < end:
                time.sleep(0.1)
                if until and until in said.read_bytes():
                    break
            process.kill()
        found = [(name.lower(), folders) for name, folders in SEARCH.findall(said.read_text("cp1252", "replace"))]
        names = [name for name, _ in found]
        first = r"c:\\windows\\system32\\advpack.dll"
        self.assertIn(first, names)
        return found[names.index(first):]

    def test_where_libraries_are_looked_for(self):
        if not WINE:
            self.skipTest("only Wine tells where it looks")
        self.plant()
        build = ("veskbuild.exe", *self.to_tree, "--yes")
        found = self.searches(*build)
        (self.program / "pebuilder3110a.zip").unlink()
        found += self.searches(*build)
        shutil.copy(PROGRAMS.parent / "ui/veskbuilder.exe", self.program)
        for name in EARLY:
            (self.program / f"{name}.dll").unlink()
        found += self.searches("veskbuilder.exe", until=b"windowscodecs")
        asked = {name.rpartition("\\")[2].removesuffix(".dll") for name, _ in found if ":" in name}
        self.assertEqual({"advpack", "cabinet", "wininet", "version"} - asked, set(), "not asked for by path")
        own = windows_path(self.program).replace("\\", r"\\")
        elsewhere = [(name, folders) for name, folders in found if ";.;" in folders or own in folders]
        self.assertEqual(elsewhere, [])


if __name__ == "__main__":
    unittest.main(argv=["loading_test.py"])
