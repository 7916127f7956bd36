"""Whole builds by the delivered programs, and what a window feels of them."""

import shutil
import statistics
import sys
import zipfile

import data
from archives import seven_zip
from harness import TOP, Row, Skip, at_least, at_most, below, in_turn, windows_path

sys.path.insert(0, str(TOP / "tests/net"))
from peers import Nginx  # noqa: E402

PLUGINS = 30


def program_folder(wine, folder):
    """A folder with the delivered programs in it."""
    program = folder / "program"
    program.mkdir()
    for path in ("src/console/veskbuild.exe", "src/ui/veskbuilder.exe"):
        shutil.copy(wine.built / path, program)
    return program


def write_archives(program):
    """PE Builder with 2,000 files and 30 plug-ins with 100 each, and their catalogue."""
    base = program / "pebuilder3110a.zip"
    data.tree_archive(base, 1999, 8.3, 100, [("pebuilder.exe", b"x")])
    plugins = []
    for number in range(PLUGINS):
        archive = program / f"plugin{number:02}.zip"
        data.tree_archive(archive, 99, 8.3, 10,
                          [(f"plugin{number}.inf", data.INF.format(f"Plug-in {number}"))])
        plugins.append((archive.name, "", data.crc(archive)))
    data.write_catalogue(program, plugins, data.crc(base))


def files_below(folder):
    return sum(path.is_file() for path in folder.rglob("*"))


def whole_build(wine, folder, rounds):
    program, tree, copy, out = (program_folder(wine, folder), folder / "tree", folder / "copy",
                                folder / "out")
    write_archives(program)

    def build():
        return wine.time(program / "veskbuild.exe", "--yes", "--install", windows_path(tree))

    def first():
        shutil.rmtree(tree, ignore_errors=True)
        return build()

    def bare():
        shutil.rmtree(copy, ignore_errors=True)
        shutil.copytree(tree, copy)
        return wine.figure("remove-bare", windows_path(copy))

    def removed():
        shutil.copytree(tree, copy)
        return wine.figure("remove", windows_path(copy))

    def unpacked():
        shutil.rmtree(out, ignore_errors=True)
        return wine.time(seven_zip(wine), "x", "-y", f"-o{windows_path(out)}\\*",
                         windows_path(program) + "\\*.zip")

    name = "whole build, 30 plug-ins, 5,000 files"
    try:
        new, over, walk, ours_gone, theirs = in_turn(
            rounds, first=first, over=build, walk=bare, gone=removed, theirs=unpacked)
        assert files_below(out) == 5000, files_below(out)
        yield Row(name + ", to 7-Zip", new, theirs, at_least(3))
    except Skip as reason:
        yield name, reason
        new, over, walk, ours_gone = in_turn(rounds, first=first, over=build, walk=bare,
                                             gone=removed)
    assert files_below(tree) > 5000, files_below(tree)
    yield Row("... over itself, to the first + 1.1 bare removals", over,
              [build + 1.1 * gone for build, gone in zip(new, walk)], at_most(1),
              f"the first {statistics.median(new):.0f} ms")
    yield Row("removing its tree, to a bare walk", ours_gone, walk, at_most(1.1))


def answers(wine, folder, rounds):
    """The longest answer of the wizard's window while it builds."""
    program, tree = program_folder(wine, folder), folder / "tree"
    base = program / "pebuilder3110a.zip"

    def longest():
        return wine.figure("answers", windows_path(program / "veskbuilder.exe"),
                           windows_path(tree))

    def row(work, values):
        return Row(f"window's longest answer, {work}", values, None, below(50))

    data.large_archive(base, 500)
    data.write_catalogue(program, [], data.crc(base))
    yield row("a member of 500 MB", [longest() for _ in range(min(rounds, 3))])
    shutil.rmtree(tree)
    data.small_archive(base, 30_000)
    data.write_catalogue(program, [], data.crc(base))
    yield row("30,000 small members", [longest()])
    yield row("the same, and their old tree removed", [longest() for _ in range(min(rounds, 3))])
    shutil.rmtree(tree)
    yield from answers_of_download(program, folder, tree, longest, row, min(rounds, 3))


def answers_of_download(program, folder, tree, longest, row, rounds):
    nginx = Nginx(folder / "nginx")
    try:
        if not nginx.direct:
            yield "window's longest answer, a download", "port 80 is not to be had"
            return
        with zipfile.ZipFile(program / "pebuilder3110a.zip", "w") as archive:
            archive.writestr("pebuilder.exe", b"x")
        plugin = nginx.root / "plugin.zip"
        with zipfile.ZipFile(plugin, "w") as archive:
            archive.writestr("plugin.inf", data.INF.format("Large"))
            archive.writestr("large", b"vesk" * 64_000_000)
        data.write_catalogue(
            program, [("plugin.zip", f"http://{nginx.direct_host}/plugin.zip", data.crc(plugin))],
            data.crc(program / "pebuilder3110a.zip"))
        values = []
        for _ in range(rounds):
            (program / "plugin.zip").unlink(missing_ok=True)
            values.append(longest())
            assert (program / "plugin.zip").exists(), "nothing was downloaded"
        yield row("a download of 256 MB", values)
        shutil.rmtree(tree)
    finally:
        nginx.stop()


def catalogues(wine, folder, rounds):
    programs = {}
    for count in (100, 1000):
        programs[count] = folder / f"catalogue{count}"
        programs[count].mkdir()
        shutil.copy(wine.built / "src/console/veskbuild.exe", programs[count])
        plugins = [(f"archive{number}.zip", f"http://archives.invalid/archive{number}.zip",
                    f"{number + 1:X}") for number in range(count)]
        data.write_catalogue(programs[count], plugins, "1")
    path = windows_path(programs[1000]) + "\\"
    load, save = in_turn(rounds, load=lambda: wine.figure("load", path),
                         save=lambda: wine.figure("save", path))
    yield Row("catalogue of 1,000 plug-ins, load", load, None, below(60))
    yield Row("catalogue of 1,000 plug-ins, save", save, None, below(200))

    def list_of(count, *arguments):
        return lambda: wine.time(programs[count] / "veskbuild.exe", *arguments)

    small, large, start = in_turn(rounds, small=list_of(100, "--list"),
                                  large=list_of(1000, "--list"),
                                  start=list_of(100, "--version"))
    begin = statistics.median(start)
    yield Row("--list of 1,000 to 100 plug-ins, an entry",
              [(took - begin) / 1000 for took in large], [(took - begin) / 100 for took in small],
              at_most(3),
              f"the whole list {statistics.median(large):.0f} ms")


GROUPS = {"build": whole_build, "answers": answers, "catalogue": catalogues}
