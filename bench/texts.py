"""Texts of strangers that must not hold a build up, and starts of programs."""

import shutil
import statistics

import data
from harness import Row, at_most, below, in_turn, windows_path

MEGABYTE = 1 << 20
SCRIPTS = {"[base] lines": "[base]\r\n", "log lines": "log,a line of the log\r\n",
           "other sections": "[base]\r\n[other]\r\n", "one line": "x", "commas": ",",
           "empty lines": "\n"}
INF_END = "[PEBuilder]\r\nName=\"Plug-in\"\r\nEnable=1\r\n[VeskBuilder]\r\nOSType=1\r\nSP=2\r\n"
INFS = {"comments": ";a comment\r\n", "sections": "[section]\r\nkey=value\r\n",
        "menus": "[Append]\r\nnu2menu.xml, menu.xml\r\n", "one line": "x", "blanks": " ",
        "keys": "key=value\r\n"}


def linear(name, rounds, measure):
    """A row of the time for a megabyte. Four times as much may take six times as long: more is a
    miss of the goal whatever the time, unless that is too short to tell."""
    small, large = in_turn(rounds, small=lambda: measure(MEGABYTE // 4),
                           large=lambda: measure(MEGABYTE))
    growth = statistics.median(large) / statistics.median(small)
    if growth > 6 and statistics.median(large) > 50:
        return Row(f"{name}, four times as much", large, small, at_most(6))
    return Row(name, large, None, below(1000), f"{growth:.1f} times that of a quarter of it")


def texts(wine, folder, rounds):
    tree = folder / "tree"
    tree.mkdir()

    def script(piece):
        def measure(size):
            (folder / "text.script").write_text("[base]\r\n" + piece * (size // len(piece)),
                                                newline="")
            return wine.figure("script", windows_path(folder / "text.script"))
        return measure

    def inf(piece):
        def measure(size):
            text = piece * (size // len(piece)) + "\r\n" + INF_END
            (tree / "plugin.inf").write_text(text, newline="")
            return wine.figure("inf", windows_path(tree), windows_path(tree / "plugin.inf"))
        return measure

    for name, piece in SCRIPTS.items():
        yield linear(f"script of 1 MB, {name}", min(rounds, 3), script(piece))
    for name, piece in INFS.items():
        yield linear(f"INF of 1 MB, {name}", min(rounds, 3), inf(piece))
    yield linear("header of 16 MB in pieces of one byte", min(rounds, 3),
                 lambda size: wine.figure("header", 16 * size))


def starts(wine, folder, rounds):
    version, empty = in_turn(
        3 * rounds,
        version=lambda: wine.time(wine.built / "src/console/veskbuild.exe", "--version"),
        empty=lambda: wine.time(wine.built / "bench/bench_empty.exe"))
    yield Row("veskbuild --version, to an empty program", version, empty, at_most(1.3))
    program = folder / "veskbuilder.exe"
    shutil.copy(wine.built / "src/ui/veskbuilder.exe", program)
    data.write_catalogue(folder, [("plugin.zip", "", "1")], "1")
    first, dialog = in_turn(
        rounds, first=lambda: wine.figure("first-window", windows_path(program)),
        dialog=lambda: wine.figure("first-window",
                                   windows_path(wine.built / "bench/bench_dialog.exe")))
    yield Row("wizard's first page, to an empty dialog", first, dialog, at_most(1.3))


GROUPS = {"text": texts, "start": starts}
