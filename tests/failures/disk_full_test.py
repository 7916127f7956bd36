#!/usr/bin/env python3
"""Builds, saves the log and saves the catalogue on disks that fill at any moment: it is reported, and no
file stands half under its final name.

    disk_full_test.py PROGRAM SAVE_TOOL LEVELS WINE...
"""

import pathlib
import shutil
import sys
import tempfile

from failures import Builder, Fault
from fixtures import mount_disk, run_in_wine, unmount_disk, windows_path
from sample import catalogue_faults

BLOCK = 4096
SKIPPED = 77


def build(builder, disk, blocks):
    """A build on a disk that has room for so many blocks beside what is there before."""
    mount_disk(disk, 100000 * BLOCK)
    builder.sample.fill(builder.run_folder, builder.program)
    used = sum(-(-path.stat().st_size // BLOCK) for path in builder.run_folder.rglob("*")
               if path.is_file() and not path.is_symlink())
    mount_disk(disk, (used + blocks) * BLOCK)
    run = builder.build(Fault())
    return run, builder.judge(Fault(), run)


def save(tool, wine, sample, disk, blocks):
    """The catalogue saved where so many blocks are free, the longer text first or second."""
    mount_disk(disk, (16 + blocks) * BLOCK)
    shutil.copy(sample / "veskbuilder.ini", disk)
    (disk / "rest").write_bytes(b"x" * BLOCK * 15)
    told = run_in_wine([*wine, str(tool), windows_path(disk) + "\\", "2"], encoding="cp1252")
    code = told.returncode
    found = catalogue_faults(disk)
    left = sorted(path.name for path in disk.iterdir())
    found += [] if left == ["rest", "veskbuilder.ini"] else [f"left behind: {left}"]
    not_saved = code == 0 and (disk / "veskbuilder.ini").stat().st_size < 9000
    found += ["code 0, not saved"] * not_saved
    return code, [f"{what} (it returned {code}: {told.stderr!r})" for what in found]


def main(program, save_tool, levels, *wine):
    folder = pathlib.Path(tempfile.mkdtemp(prefix="vesk-disk-"))
    disk = folder / "small"
    builder = None
    try:
        if not mount_disk(disk, 16 * BLOCK):
            print("no small disk can be mounted")
            return SKIPPED
        builder = Builder(folder, pathlib.Path(program).resolve(), wine, "build", large=100000)
        builder.run_folder = disk / "run"
        builder.arguments[1] = windows_path(builder.run_folder / "tree")
        mount_disk(disk, 100000 * BLOCK)
        builder.good = builder.build(Fault())
        need = sum(-(-size // BLOCK) for _, size, *_ in
                   (what for what in builder.good.made.values() if what != "folder"))
        found, whole = [], 0
        for level in range(int(levels)):
            blocks = level * (need + 4) // (int(levels) - 1)
            run, wrong = build(builder, disk, blocks)
            whole += run.code == 0
            found += [f"{blocks} blocks: {what}" for what in wrong]
        saved = 0
        for blocks in range(8):
            code, wrong = save(pathlib.Path(save_tool).resolve(), wine,
                               folder / "build/sample/program", disk, blocks)
            saved += code == 0
            found += [f"catalogue, {blocks} blocks: {what}" for what in wrong]
        print(*found, sep="\n")
        print(f"{levels} fill levels from 0 to {need + 4} blocks, {whole} builds whole; 8 of the "
              f"catalogue, {saved} saved; {len(found)} found wrong")
        # With no room at all nothing can be whole, and with all room everything is.
        return 1 if found or not 0 < whole < int(levels) or not 0 < saved < 8 else 0
    finally:
        if builder:
            builder.stop()
        unmount_disk(disk)
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
