"""How bench/run measures: works taken in turn, medians with their spread, a goal for each."""

import contextlib
import functools
import os
import pathlib
import re
import shutil
import statistics
import subprocess
import tempfile
import threading
import time
from typing import NamedTuple

from fixtures import TOP, windows_path

PREFIX = "bench"
PRESETS = {64: "windows", 32: "windows32"}


class Skip(Exception):
    """What is left of a group cannot be measured here; the text says why."""


class Goal(NamedTuple):
    """What the figures have to be. `kind` is "at most" or "at least" for a ratio (ours to the
    peer's, or the peer's to ours), and a unit for ours alone, which then is to be below."""
    kind: str
    limit: float

    def figure(self, ours, peer):
        if self.kind == "at most":
            return ours / peer
        return peer / ours if self.kind == "at least" else ours

    def holds(self, figure):
        return figure >= self.limit if self.kind == "at least" else figure <= self.limit

    def __str__(self):
        kind, limit = self.kind, f"{self.limit:g}"
        return f"{kind} {limit}" if kind in ("at most", "at least") else f"{limit} {kind}"


at_most = functools.partial(Goal, "at most")
at_least = functools.partial(Goal, "at least")
below = functools.partial(Goal, "ms")


class Row(NamedTuple):
    """A line of the table: what each round took, in the order of the rounds."""
    name: str
    ours: list
    peer: list
    goal: Goal
    note: str = ""
    unit: str = "ms"

    def cells(self):
        """The goal's figure of each round counts. Neighbours in time saw the same machine: so the
        spread is that of their ratios and not that of the times. Short is what misses its goal by
        more than its noise: also with the better quartile."""
        figures = sorted(map(self.goal.figure, self.ours, self.peer or self.ours))
        low, middle, high = (statistics.quantiles(figures, n=4, method="inclusive") if len(figures) > 2
                             else (figures[0], statistics.median(figures), figures[-1]))
        better = high if self.goal.kind == "at least" else low
        verdict = ("held" if self.goal.holds(middle) else
                   "within noise" if self.goal.holds(better) else "SHORT")
        peers = ((shown(self.peer, self.unit), f"{middle:.2f} ({low:.2f}-{high:.2f})") if self.peer
                 else ("-", ""))
        return self.name, shown(self.ours, self.unit), *peers, str(self.goal), verdict


def shown(values, unit):
    """Median, and the lowest and highest."""
    def number(value):
        return f"{value:.0f}" if value >= 100 else f"{value:.1f}" if value >= 10 else f"{value:.2f}"
    middle = number(statistics.median(values))
    return f"{middle} {unit} ({number(min(values))}-{number(max(values))})"


def in_turn(rounds, **works):
    """Runs each work once a round, after one round that only warms caches. @return a list of
    what each gave"""
    results = {name: [] for name in works}
    for number in range(rounds + 1):
        for name, work in works.items():
            value = work()
            if number > 0:
                results[name].append(value)
    return results.values()


def fresh(target, work, *arguments):
    """The work, with nothing of an earlier round at its target."""
    def start():
        shutil.rmtree(target, ignore_errors=True)
        return work(*arguments)
    return start


class Wine:
    """The project's own Wine, in a prefix of the benchmarks, kept running."""

    def __init__(self, bits=64):
        self.prefix = PREFIX if bits == 64 else PREFIX + "32"
        os.environ["VESK_PREFIX"] = self.prefix
        self.bits = bits
        self.program = TOP / "tools/wine"
        self.built = TOP / f"build/{PRESETS[bits]}"
        subprocess.run([TOP / "tools/wine-prefix", self.prefix], check=True)
        # Without a program that runs all the time every start would also start the server.
        self.idle = self.start(self.built / "bench/bench_tool.exe", "idle", "100000")
        time.sleep(2)

    def stop(self):
        subprocess.run(["wineserver", "-k"], check=False,
                       env={**os.environ, "WINEPREFIX": str(TOP / "build/wine" / self.prefix)})
        self.idle.wait(20)

    def start(self, program, *arguments, output=subprocess.DEVNULL):
        """Starts a program. Arguments that are paths become those of Windows."""
        words = [windows_path(word) if isinstance(word, pathlib.Path) else str(word)
                 for word in arguments]
        return subprocess.Popen([self.program, str(program), *words], stdin=subprocess.DEVNULL,
                                stdout=output, stderr=output)

    def run(self, program, *arguments, codes=(0,)):
        """@return what it printed"""
        # Not through a pipe: a process of Wine's own that it happens to start would hold it open.
        with tempfile.TemporaryFile() as output:
            process = self.start(program, *arguments, output=output)
            # A wait that is given a timeout only looks now and then, up to 50 ms too late.
            limit = threading.Timer(600, process.kill)
            limit.start()
            code = process.wait()
            limit.cancel()
            output.seek(0)
            lines = output.read().decode("cp1252", "replace").splitlines(True)
        said = "".join(line for line in lines if not line.startswith("wine: "))  # its complaints
        if code not in codes:
            raise RuntimeError(f"{program} {arguments} gave {code}: {said[-1000:]}")
        return said

    def time(self, program, *arguments, **options):
        """Milliseconds of a whole process."""
        start = time.perf_counter()
        self.run(program, *arguments, **options)
        return 1000 * (time.perf_counter() - start)

    def tool(self, action, *arguments):
        """Figures that an action of bench_tool prints."""
        return [*map(float, self.run(self.built / "bench/bench_tool.exe", action, *arguments).split())]

    def figure(self, action, *arguments):
        """The first figure of an action."""
        return self.tool(action, *arguments)[0]

    def peak_memory(self, *arguments):
        """MiB of its own that an action has at most; the pages of files that it maps are not its
        own: the system may drop them at any time."""
        process = self.start(self.built / "bench/bench_tool.exe", *arguments)
        peak = 0
        while process.poll() is None:
            with contextlib.suppress(OSError):  # it may end meanwhile
                status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
                peak = max(peak, *map(int, re.findall(r"RssAnon:\s*(\d+)", status)), 0)
            time.sleep(0.002)
        if process.returncode != 0:
            raise RuntimeError(f"{arguments} gave {process.returncode}")
        return peak / 1024
