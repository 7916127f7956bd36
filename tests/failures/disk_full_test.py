#!/usr/bin/env python3
"""Builds, saves the log and saves the catalogue on disks that fill at any moment: it is reported, and no
file stands half under its final name.

    disk_full_test.py PROGRAM SAVE_TOOL LEVELS WINE...
"""

import contextlib
import pathlib
import shutil
import sys
import tempfile

from failures import Builder, Fault
from fixtures import mount_disk, run_in_wine, unmount_disk, windows_path
from sample import SavedCatalogue

BLOCK = 4096
ROOM = 4  # blocks beyond what a build leaves
SKIPPED = 77


def blocks_in(disk):
    return sum(-(-path.stat().st_size // BLOCK) for path in disk.rglob("*")
               if path.is_file() and not path.is_symlink())


def builds(builder, run_folder, disk, words, levels):
    """Builds in a folder that is on a disk, or of which a folder is one, with so many blocks free as fit
    between none and enough; one of them must say these words. @return how many builds there were, how
    many whole, and what is wrong"""
    builder.run_folder = run_folder
    builder.arguments[1] = windows_path(run_folder / "tree")
    run_folder.mkdir(exist_ok=True)
    mount_disk(disk, 100000 * BLOCK)
    builder.sample.fill(run_folder, builder.program)
    used = blocks_in(disk)
    builder.good = builder.build(Fault())
    most = blocks_in(disk) - used + ROOM
    found, whole, reasons = [], 0, ""
    tried = sorted({level * most // (levels - 1) for level in range(levels)})
    for blocks in tried:
        mount_disk(disk, (used + blocks) * BLOCK)
        run = builder.build(Fault())
        whole += run.code == 0
        reasons += run.errors
        found += [f"{disk.name}, {blocks} blocks: half of {name}" for name in run.differing(builder.good)
                  if name.endswith("large.bin") and name in run.made]
        found += [f"{disk.name}, {blocks} blocks: {what}" for what in builder.judge(Fault(), run)]
    unmount_disk(disk)
    # With no room at all nothing can be whole, and with all room everything is.
    found += [] if 0 < whole < len(tried) else [f"{disk.name}: {whole} whole"]
    found += [] if words in reasons else [f'{disk.name}: "{words}" is never told']
    return len(tried), whole, found


def save(catalogue, disk, blocks):
    """The catalogue saved where so many blocks are free, the longer text first or second."""
    mount_disk(disk, (16 + blocks) * BLOCK)
    shutil.copy(catalogue.path, disk)
    (disk / "rest").write_bytes(b"x" * BLOCK * 15)
    told = run_in_wine([*catalogue.command, "2"], encoding="cp1252")
    found = catalogue.faults(disk)
    left = sorted(path.name for path in disk.iterdir())
    found += [] if left == ["rest", "veskbuilder.ini"] else [f"left behind: {left}"]
    not_saved = told.returncode == 0 and (disk / "veskbuilder.ini").stat().st_size < 9000
    found += ["code 0, not saved"] * not_saved
    return told.returncode, [f"{what} ({told})" for what in found]


def main(program, save_tool, levels, *wine):
    with contextlib.ExitStack() as stack:
        folder = pathlib.Path(stack.enter_context(
            tempfile.TemporaryDirectory(prefix="vesk-disk-", ignore_cleanup_errors=True)))
        disk, own = folder / "small", folder / "run/program"
        for place in (disk, own):
            stack.callback(unmount_disk, place)
        if not mount_disk(disk, 16 * BLOCK):
            print("no small disk can be mounted")
            return SKIPPED
        unmount_disk(disk)
        builder = Builder(folder, program, wine, "build", large=100000)
        found = []
        # The tree is on the disk with the program, or the program alone, with downloads and log.
        for run_folder, small, words in (
                (disk / "run", disk, "large.zip: large.bin: not written, disk full"),
                (own.parent, own, "log: not saved, disk full")):
            tried, whole, wrong = builds(builder, run_folder, small, words, int(levels))
            found += wrong
            print(f"{tried} fill levels of the disk {small.name}, {whole} builds whole")
        saved = 0
        shutil.rmtree(disk)
        catalogue = SavedCatalogue(folder / "build/sample", save_tool, wine, disk)
        for blocks in range(8):
            code, wrong = save(catalogue, disk, blocks)
            saved += code == 0
            found += [f"catalogue, {blocks} blocks: {what}" for what in wrong]
        print(*found, sep="\n")
        print(f"8 of the catalogue, {saved} saved; {len(found)} found wrong")
        return 1 if found or not 0 < saved < 8 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
