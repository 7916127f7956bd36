"""Whole builds by the delivered programs, and what a window feels of them."""

import functools
import shutil
import statistics
import zipfile

import data
from archives import seven_zip
from harness import Row, Skip, at_least, at_most, below, fresh, in_turn, windows_path
from peers import Nginx

PLUGINS = 30


def write_archives(program):
    """PE Builder with 2,000 files and 30 plug-ins with 100 each, and their catalogue."""
    data.tree_archive(program / "pebuilder3110a.zip", 1999, 8.3, 100, [("pebuilder.exe", b"x")])
    plugins = []
    for number in range(PLUGINS):
        archive = program / f"plugin{number:02}.zip"
        data.tree_archive(archive, 99, 8.3, 10,
                          [(f"plugin{number}.inf", data.INF.format(f"Plug-in {number}"))])
        plugins.append((archive.name, "", data.crc_of(archive)))
    data.write_catalogue(program, plugins)


def files_below(folder):
    return sum(path.is_file() for path in folder.rglob("*"))


def whole_build(wine, folder, rounds):
    program = data.program_folder(wine, folder)
    tree, copy, out = folder / "tree", folder / "copy", folder / "out"
    write_archives(program)
    build = functools.partial(wine.time, program / "veskbuild.exe", "--yes", "--install", tree)

    def remove(action):
        shutil.copytree(tree, copy)
        return wine.figure(action, copy)

    def unpacked():
        return wine.time(seven_zip(wine), "x", "-y", f"-o{windows_path(out)}\\*",
                         windows_path(program) + "\\*.zip")

    new, over, walk, ours_gone = in_turn(
        rounds, first=fresh(tree, build), over=build, walk=fresh(copy, remove, "remove-bare"),
        gone=fresh(copy, remove, "remove"))
    assert files_below(tree) > 5000, files_below(tree)
    yield Row("a build over itself, to the first + 1.1 bare removals", over,
              [build + 1.1 * gone for build, gone in zip(new, walk)], at_most(1),
              f"the first {statistics.median(new):.0f} ms")
    yield Row("removing its tree, to a bare walk", ours_gone, walk, at_most(1.1))
    seven_zip(wine)
    ours, theirs = in_turn(rounds, ours=fresh(tree, build), theirs=fresh(out, unpacked))
    assert files_below(out) == 5000, files_below(out)
    yield Row("whole build, 30 plug-ins, 5,000 files, to 7-Zip", ours, theirs, at_least(3))


def answers(wine, folder, rounds):
    """The longest answer of the wizard's window while it builds."""
    program, tree = data.program_folder(wine, folder), folder / "tree"
    base, rounds = program / "pebuilder3110a.zip", min(rounds, 3)

    def row(work, times, before=lambda: None):
        values = []
        for _ in range(times):
            before()
            values.append(wine.figure("answers", program / "veskbuilder.exe", tree))
        return Row(f"window's longest answer, {work}", values, None, below(50))

    data.large_archive(base, 500)
    data.write_catalogue(program)
    yield row("a member of 500 MB", rounds)
    shutil.rmtree(tree)
    data.small_archive(base, 30_000)
    data.write_catalogue(program)
    yield row("30,000 small members", 1)
    yield row("the same, and their old tree removed", rounds)
    shutil.rmtree(tree)
    data.small_archive(base, 1)
    nginx = Nginx(folder / "nginx")
    try:
        if not nginx.direct:
            raise Skip("port 80 is not to be had")
        plugin = nginx.root / "plugin.zip"
        with zipfile.ZipFile(plugin, "w") as archive:
            archive.writestr("plugin.inf", data.INF.format("Large"))
            archive.writestr("large", b"vesk" * 64_000_000)
        data.write_catalogue(program, [(
            "plugin.zip", f"http://{nginx.direct_host}/plugin.zip", data.crc_of(plugin))])
        yield row("a download of 256 MB", rounds,
                  lambda: (program / "plugin.zip").unlink(missing_ok=True))
        assert (program / "plugin.zip").exists(), "nothing was downloaded"
        shutil.rmtree(tree)
    finally:
        nginx.stop()


def catalogues(wine, folder, rounds):
    programs = {}
    for count in (100, 1000):
        programs[count] = data.program_folder(wine, folder / str(count))
        plugins = [(f"archive{number}.zip", f"http://archives.invalid/archive{number}.zip",
                    f"{number + 1:X}") for number in range(count)]
        data.write_catalogue(programs[count], plugins)
    path = windows_path(programs[1000]) + "\\"
    load, save = in_turn(rounds, load=lambda: wine.figure("load", path),
                         save=lambda: wine.figure("save", path))
    yield Row("catalogue of 1,000 plug-ins, load", load, None, below(60))
    yield Row("catalogue of 1,000 plug-ins, save", save, None, below(200))
    small, large, start = in_turn(
        rounds, small=lambda: wine.time(programs[100] / "veskbuild.exe", "--list"),
        large=lambda: wine.time(programs[1000] / "veskbuild.exe", "--list"),
        start=lambda: wine.time(programs[100] / "veskbuild.exe", "--version"))
    begin = statistics.median(start)
    yield Row("--list of 1,000 to 100 plug-ins, an entry",
              [(took - begin) / 1000 for took in large], [(took - begin) / 100 for took in small],
              at_most(3),
              f"the whole list {statistics.median(large):.0f} ms")


GROUPS = {"build": whole_build, "answers": answers, "catalogue": catalogues}
