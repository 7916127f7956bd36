#!/usr/bin/env python3
"""Ends builds and saves of the catalogue at random moments, downloads included: whatever the moment,
no file stands half under its final name, and the next build ends whole.

    killed_test.py PROGRAM SAVE_TOOL RUNS SEED WINE...
"""

import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time

from failures import LAST_LINE, Builder, Fault
from sample import LEFTOVER, SavedCatalogue


def send_slowly(connection, content):
    """In pieces, so that many moments lie within a download."""
    for start in range(0, len(content), 200):
        connection.sendall(content[start:start + 200])
        time.sleep(0.02)


class Killed:
    def __init__(self, folder, program, save_tool, seed, wine):
        self.draw = random.Random(int(seed))
        self.builder = Builder(folder, program, wine, "killed", send=send_slowly)
        self.place = folder / "catalogue"
        self.catalogue = SavedCatalogue(folder / "killed/sample", save_tool, wine, self.place)
        self.good = self.whole_build()
        self.unfinished = self.downloading = 0

    def whole_build(self, **options):
        """A build that goes through. How long it took says when the next one can be killed."""
        start = time.monotonic()
        run = self.builder.build(Fault(), **options)
        self.length = time.monotonic() - start
        return run

    def tree(self, made):
        return {name: what for name, what in made.items() if name.startswith("tree/")}

    def build(self):
        """One build killed and one that goes through. @return what is wrong"""
        killed = self.builder.build(Fault(), after=self.draw.uniform(0, self.length))
        found = self.builder.half_archives()
        program = self.builder.run_folder / "program"
        self.downloading += any(path.read_bytes() not in (b"", LEFTOVER.encode())
                                for path in program.glob("*.vesk-part"))
        log = program / "veskbuider.log"
        if log.exists() and LAST_LINE not in log.read_text("cp1252"):
            found.append("half a log")
        marked = "tree/veskbuild.unfinished" in killed.made
        self.unfinished += marked
        tree, untouched = self.tree(killed.made), self.tree(self.builder.untouched)
        tree.pop("tree/veskbuild.unfinished.vesk-new", None)  # nothing is touched before it is the mark
        if not marked and tree not in ({}, self.tree(self.good.made), untouched):
            found.append(f"a tree that is not whole bears no mark: {sorted(tree.items() ^ untouched.items())[:5]}")
        again = self.whole_build(fresh=False)
        if again.code != 0 or again.errors or self.tree(again.made) != self.tree(self.good.made):
            found.append(f"the next build: {again.code} {again.errors} {again.differing(self.good)[:5]}")
        return found

    def save(self):
        """The catalogue saved over and over until killed: it is one of the two that are saved."""
        shutil.rmtree(self.place, ignore_errors=True)
        self.place.mkdir()
        shutil.copy(self.catalogue.path, self.place)
        moment = self.draw.uniform(0, 0.2)
        for _ in range(2):  # Wine ends a process now and then before it has begun
            process = subprocess.Popen(self.catalogue.command, stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            began = self.await_change(process, self.place)
            if began:
                time.sleep(moment)
            process.kill()
            process.wait()
            if began:
                return self.catalogue.faults(self.place)
        return ["no save began"]

    @staticmethod
    def await_change(process, folder):
        """@return whether a file was made in a folder, or its catalogue written"""
        def times():
            return [path.stat().st_mtime_ns for path in (folder, folder / "veskbuilder.ini")]

        before, end = times(), time.monotonic() + 30
        while process.poll() is None and time.monotonic() < end:
            if times() != before:
                return True
            time.sleep(0.001)
        return False


def main(program, save_tool, runs, seed, *wine):
    with tempfile.TemporaryDirectory(prefix="vesk-killed-", ignore_cleanup_errors=True) as folder:
        killed = Killed(pathlib.Path(folder), program, save_tool, seed, wine)
        found, run = [], 0
        # It may take more runs until a build is hit at work, and in a download.
        while run < int(runs) or 0 in (killed.unfinished, killed.downloading) and run < 5 * int(runs):
            found += [f"run {run}: {what}" for what in killed.build() + killed.save()]
            run += 1
        print(*found, sep="\n")
        print(f"{run} builds and {run} saves killed; {killed.unfinished} left a marked tree, "
              f"{killed.downloading} a part of a download; {len(found)} found wrong")
        # If no kill hit a build at work, the moments were drawn from the wrong span.
        return 1 if found or 0 in (killed.unfinished, killed.downloading) else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
