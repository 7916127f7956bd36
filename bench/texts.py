"""Texts of strangers that must not hold a build up, and starts of programs."""

import functools
import statistics

import data
from harness import Row, at_most, below, in_turn

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

    def measure(file, head, tail, action, *arguments):
        def work(piece, size):
            file.write_text(head + piece * (size // len(piece)) + tail, newline="")
            return wine.figure(action, *arguments, file)
        return lambda piece: functools.partial(work, piece)

    script = measure(folder / "text.script", "[base]\r\n", "", "script")
    inf = measure(tree / "plugin.inf", "", "\r\n" + INF_END, "inf", tree)
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
    program = data.program_folder(wine, folder) / "veskbuilder.exe"
    data.write_catalogue(program.parent, [("plugin.zip", "", "1")])
    first, dialog = in_turn(
        rounds, first=lambda: wine.figure("first-window", program),
        dialog=lambda: wine.figure("first-window", wine.built / "bench/bench_dialog.exe"))
    yield Row("wizard's first page, to an empty dialog", first, dialog, at_most(1.3))


GROUPS = {"text": texts, "start": starts}
