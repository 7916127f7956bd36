"""How bench/run measures: works taken in turn, medians with their spread, a goal for each."""

import dataclasses
import math
import os
import pathlib
import statistics
import subprocess
import tempfile
import threading
import time

TOP = pathlib.Path(__file__).resolve().parents[1]
PREFIX = "bench"
PRESETS = {64: "windows", 32: "windows32"}
LAUNCHERS = {64: TOP / "tools/wine", 32: TOP / "tools/wine32"}


class Skip(Exception):
    """A row cannot be measured here; the text says why."""


@dataclasses.dataclass
class Goal:
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
        if self.kind in ("at most", "at least"):
            return f"{self.kind} {self.limit:g}"
        return f"{self.limit:g} {self.kind}"


def at_most(limit):
    return Goal("at most", limit)


def at_least(limit):
    return Goal("at least", limit)


def below(limit, unit="ms"):
    return Goal(unit, limit)


@dataclasses.dataclass
class Row:
    """A line of the table: what each round took, in the order of the rounds."""
    name: str
    ours: list
    peer: list
    goal: Goal
    note: str = ""
    unit: str = "ms"

    def figures(self):
        """The goal's figure of each round. Neighbours in time saw the same machine: so the spread
        is that of their ratios and not that of the times."""
        pairs = zip(self.ours, self.peer or [math.nan] * len(self.ours))
        return [self.goal.figure(ours, peer) for ours, peer in pairs]

    def quartiles(self):
        figures = self.figures()
        if len(figures) < 3:
            return min(figures), max(figures)
        low, _, high = statistics.quantiles(figures, n=4, method="inclusive")
        return low, high

    def verdict(self):
        """Short is what misses its goal by more than its noise: also with the better quartile."""
        low, high = self.quartiles()
        if self.goal.holds(statistics.median(self.figures())):
            return "held"
        better = high if self.goal.kind == "at least" else low
        return "within noise" if self.goal.holds(better) else "SHORT"

    def cells(self):
        low, high = self.quartiles()
        ratio = ""
        if self.peer:
            ratio = f"{statistics.median(self.figures()):.2f} ({low:.2f}-{high:.2f})"
        return (self.name, shown(self.ours, self.unit),
                shown(self.peer, self.unit) if self.peer else "-", ratio, str(self.goal),
                self.verdict())


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


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Wine:
    """The project's own Wine, in a prefix of the benchmarks, kept running."""

    def __init__(self, bits=64):
        os.environ["VESK_PREFIX"] = PREFIX
        self.bits = bits
        self.program = LAUNCHERS[bits]
        self.built = TOP / f"build/{PRESETS[bits]}"
        if bits == 64:
            subprocess.run([TOP / "tools/wine-prefix", PREFIX], check=True)
        # Without a program that runs all the time every start would also start the server.
        self.idle = self.start(self.built / "bench/bench_tool.exe", "idle", "100000")
        time.sleep(2)

    def stop(self):
        if self.bits == 32:
            self.idle.terminate()
            self.idle.wait(20)
            return
        environment = {**os.environ, "WINEPREFIX": str(TOP / "build/wine" / PREFIX)}
        subprocess.run(["wineserver", "-k"], env=environment, check=False)
        self.idle.wait(20)

    def start(self, program, *arguments):
        return subprocess.Popen([self.program, str(program), *map(str, arguments)],
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def run(self, program, *arguments, codes=(0,), cwd=None):
        """@return what it printed"""
        # Not through a pipe: a process of Wine's own that it happens to start would hold it open.
        with tempfile.TemporaryFile() as output:
            process = subprocess.Popen([self.program, str(program), *map(str, arguments)], cwd=cwd,
                                       stdin=subprocess.DEVNULL, stdout=output, stderr=output)
            # A wait that is given a timeout only looks now and then, up to 50 ms too late.
            limit = threading.Timer(600, process.kill)
            limit.start()
            code = process.wait()
            limit.cancel()
            output.seek(0)
            lines = output.read().decode("cp1252", "replace").splitlines(True)
        said = "".join(line for line in lines if not line.startswith("wine: "))  # its complaints
        if code not in codes:
            raise RuntimeError(f"{pathlib.Path(program).name} {arguments} gave {code}: "
                               + said[-1000:])
        return said

    def time(self, program, *arguments, **options):
        """Milliseconds of a whole process."""
        start = time.perf_counter()
        self.run(program, *arguments, **options)
        return 1000 * (time.perf_counter() - start)

    def tool(self, action, *arguments):
        """Figures that an action of bench_tool prints, a list for each line."""
        said = self.run(self.built / "bench/bench_tool.exe", action, *arguments)
        return [[float(figure) for figure in line.split()] for line in said.splitlines()]

    def figure(self, action, *arguments):
        """The first figure of an action."""
        return self.tool(action, *arguments)[0][0]

    def peak_memory(self, program, *arguments):
        """MiB of its own that a program has at most; the pages of files that it maps are not its
        own: the system may drop them at any time."""
        process = self.start(program, *arguments)
        peak = 0
        while process.poll() is None:
            try:
                status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
                own = [line for line in status.splitlines() if line.startswith("RssAnon")]
                peak = max(peak, int(own[0].split()[1])) if own else peak
            except OSError:
                pass
            time.sleep(0.002)
        if process.returncode != 0:
            raise RuntimeError(f"{program} {arguments} gave {process.returncode}")
        return peak / 1024
