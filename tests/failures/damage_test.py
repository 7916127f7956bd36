#!/usr/bin/env python3
"""Builds from archives that were damaged at random, by the delivered program on a disk and with the
system's cabinet library: they end, write nothing elsewhere, and what is not whole is told.

    damage_test.py PROGRAM ARCHIVES SEED WINE...
"""

import itertools
import pathlib
import random
import re
import shutil
import sys
import tempfile
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from fixtures import (TOP, Member, crc_of, run_in_wine, windows_path, write_archive,  # noqa: E402
                      write_cab, write_catalogue)

AT_ONCE = 40  # archives of one build
WHOLE = ("zip/stored_and_packed", "zip/streamed_twice", "zip/locked", "zip/fields_and_comment",
         "cab/two_folders", "cab/two_packed_blocks")
PRESSED = "pressed.cab"  # by LZX
UNKNOWN = "quantum.cab"  # the same data said to be of the other kind: nobody knows what comes out
LZX, QUANTUM = b"\x03\x0f", b"\x72\x14"  # as a cabinet's folder names them


def fixtures(folder):
    path = folder / PRESSED
    write_cab(path, [Member("one.txt", b"text" * 99), Member("sub\\two.txt", bytes(range(256)) * 9)], pressed=True)
    pressed = path.read_bytes()
    found = {name.split("/")[1] + "." + name[:3]: (TOP / "fuzz/corpus" / name).read_bytes() for name in WHOLE}
    return found | {PRESSED: pressed, UNKNOWN: pressed.replace(LZX, QUANTUM, 1)}


def damaged(content, draw):
    content = bytearray(content)
    for _ in range(draw.randint(1, 4)):
        content[draw.randrange(len(content))] ^= draw.randint(1, 255)
    if draw.random() < 0.2:
        del content[draw.randrange(len(content)):]
    return bytes(content)


class Build:
    """One build of many archives, and the check of the same."""

    def __init__(self, folder, program, wine, archives):
        shutil.rmtree(folder, ignore_errors=True)
        self.folder, self.plugins = folder, folder / "tree/Plugin/100_tools"
        place = folder / "program"
        place.mkdir(parents=True)
        (place / "veskbuild.exe").symlink_to(program)
        (place / "readme.txt").write_text("read me")
        base = write_archive(place / "pebuilder3110a.zip", Member("pebuilder.exe", "x"))
        for name, content in archives.items():
            (place / name).write_bytes(content)
        write_catalogue(place, [("PE Builder", "pebuilder3110a.zip", "", 1, 1, "", base)],
                        [(name, name, "100", 1, 0, "", crc_of(place / name)) for name in archives])
        self.command = [*wine, str(place / "veskbuild.exe"), "--password", "pass"]
        before = self.elsewhere()
        start = time.monotonic()
        self.built = self.run("--install", windows_path(folder / "tree"), "--yes")
        self.seconds = time.monotonic() - start
        self.made = self.elsewhere() - before
        self.checked = self.run("--check")

    def run(self, *arguments):
        return run_in_wine([*self.command, *arguments], encoding="latin-1")

    def elsewhere(self):
        """What is not in the folder of an archive, and no list of problems."""
        return {str(path.relative_to(self.folder)) for path in self.folder.rglob("*")
                if not path.is_relative_to(self.plugins)} - {"program/veskbuilder-problems.txt"}

    def contents(self, archive):
        return sorted(path.read_bytes() for path in (self.plugins / archive[:-4]).rglob("*") if path.is_file())

    def told(self, run):
        return set(re.findall(r"\b\w+\.(?:zip|cab)\b", run.stderr if run is self.built else run.stdout))


def faults(build, good, kinds):
    """@param good what the undamaged archives gave
    @param kinds of which of them each archive was made"""
    codes = (build.built.returncode, build.checked.returncode)
    found = [f"exit codes {codes}"] if not {0, 1}.issuperset(codes) else []
    found += [f"elsewhere: {path}" for path in sorted(build.made ^ good.made)]
    found += [f"{build.seconds:.0f} s"] if build.seconds > 60 + good.seconds else []
    told, checked = build.told(build.built), build.told(build.checked)
    for name, kind in kinds.items():
        is_zip, there, wanted = name.endswith(".zip"), build.contents(name), good.contents(kind)
        # The headers of a cabinet have no checksum, and its data need none.
        whole = there == wanted if is_zip else len(there) == len(wanted)
        if not whole and kind != UNKNOWN and name not in told:
            found.append(f"{name} of {kind}: {len(there)} of {len(wanted)} files, and not told")
        # What only the system's library can unpack, the check leaves packed.
        if (name in told) != (name in checked) and (name in checked or kind not in (PRESSED, UNKNOWN)):
            found.append(f"{name} of {kind}: told by {'the build' if name in told else 'the check'} alone")
    return found


def main(program, archives, seed, *wine):
    draw = random.Random(seed)
    with tempfile.TemporaryDirectory(prefix="vesk-damage-", ignore_cleanup_errors=True) as folder:
        folder = pathlib.Path(folder)
        whole = fixtures(folder)
        good = Build(folder / "good", program, wine, whole)
        if good.told(good.built) != {UNKNOWN} or not all(map(good.contents, set(whole) - {UNKNOWN})):
            sys.exit(f"the undamaged archives are not built: {good.built}")
        found, told = [], 0
        for first in range(0, int(archives), AT_ONCE):
            kinds = {f"d{number}{kind[-4:]}": kind for number, kind in
                     zip(range(first, first + AT_ONCE), itertools.cycle(whole))}
            made = {name: damaged(whole[kind], draw) for name, kind in kinds.items()}
            build = Build(folder / "build", program, wine, made)
            told += len(build.told(build.built))
            found += [what + f" ({made[what.split()[0]].hex()})" * (what.split()[0] in made)
                      for what in faults(build, good, kinds)]
        print(*found, sep="\n")
        print(f"{archives} damaged archives, {told} told of, {len(found)} found wrong")
        return 1 if found or told == 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
