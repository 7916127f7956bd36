#!/usr/bin/env python3
"""Makes single calls of a build fail and checks whether the program tells the truth about it.

    failures.py [--all | --one CALL NUMBER REASON] [--only CALLS] [--share 1/2] [--workers N]
                PROGRAM WINE...

--all tries each call of the functions that are called seldom, and of the others the first one from
each place in the program, for each reason; without it one call of each function is drawn: the first,
the last or one between.
"""

import argparse
import collections
import concurrent.futures
import dataclasses
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile

from sample import Sample, picture, windows_path
from net.peers import ScriptedServer

SELDOM = 60  # calls of a function of which each is tried
LAST_LINE = "click 'Finish' to exit"
ENDS = (0, 1, 2, 3, 5)  # exit codes of runs that began: done, with problems, failed, aborted, no PE
REFUSALS = (4, 64)
BROKEN_OFF = 70
DISK_FULL = 112
PRINTING = ("fwrite", "fflush")  # what may keep log and problems from being shown
REASON = re.compile(r"veskbuild: \S.*: \S.*, \S")  # what a problem says: a place, what, and why
ENDED = re.compile(r"veskbuild: \S+ \S")
WAITED = ": no data for "  # a download that waits for what will never come: in the wizard for good
UNTRUE = re.compile(r".*\bit is empty")  # of no archive of the sample
HALF = 0xFFFFFFFE
END_WITHOUT_NOTICE = ("recv", HALF)  # the system would tell of the end besides
DATING = ("GetDateFormatA", "GetTimeFormatA")  # what only the log's dates are made with


@dataclasses.dataclass(frozen=True)
class Fault:
    call: str = ""
    number: int = 0
    reason: int = 0
    on: bool = False  # each later call fails as well

    def __str__(self):
        return f"{self.call} {self.number} {self.reason}{' on' if self.on else ''}"


@dataclasses.dataclass
class Run:
    code: int | None  # None: it hung
    lines: list
    errors: str
    made: dict
    calls: dict = dataclasses.field(default_factory=dict)
    reasons: dict = dataclasses.field(default_factory=dict)
    places: dict = dataclasses.field(default_factory=dict)
    open: dict = dataclasses.field(default_factory=dict)
    registry: int = 0  # a mark of what was written there

    def read(self, report):
        for line in report.read_text("cp1252").splitlines():
            kind, name, *numbers = line.split("\t")
            numbers = [int(number) for number in numbers]
            if kind == "call":
                self.calls[name], self.reasons[name] = numbers[0], numbers[1:]
            elif kind == "open":
                self.open[name] = numbers[0]
            elif kind == "place":
                self.places.setdefault(name, []).append(numbers[0])
            else:
                self.registry = numbers[0]

    def differing(self, other):
        """Names of what two runs made differently."""
        return sorted(name for name in self.made.keys() | other.made.keys()
                      if self.made.get(name) != other.made.get(name))


class Builder:
    """Builds the sample in a folder of its own, with one call failing."""

    def __init__(self, folder, program, wine, name, **sample):
        self.folder, self.program, self.wine = folder / name, program, wine
        self.key = f"Software\\Vesk Builder Failures {name}"
        self.sample = Sample(self.folder / "sample", self.key, **sample)
        server = ScriptedServer(self.sample.serve)
        self.run_folder = self.folder / "run"
        self.arguments = ["--install", windows_path(self.run_folder / "tree"), "--source",
                          windows_path(self.folder / "sample/source"), "--yes", "--timeout", "10",
                          "--proxy", f"localhost:{server.port}"]
        self.sample.fill(self.run_folder, self.program)
        self.untouched = picture(self.run_folder)
        self.good = self.build(Fault(), places=True)

    def build(self, fault, **options):
        """As build_once. On a busy machine Wine ends a process now and then, with 1 and without a report,
        loses its exit code, or keeps it; the program would do so again."""
        run = self.build_once(fault, **options)
        if run.code == 1 and not run.calls or run.code == 0 and run.errors or \
                run.code is None and options.get("after") is None:
            print("left out: a run that Wine ended", file=sys.stderr)
            run = self.build_once(fault, **options)
        return run

    def build_once(self, fault, places=False, fresh=True, after=None):
        """@param fresh whether program folder and tree are made again before
        @param after seconds after which the program is ended"""
        report = self.folder / "report"
        report.unlink(missing_ok=True)
        if fresh:
            self.sample.fill(self.run_folder, self.program)
        told = {"CALL": fault.call, "AT": fault.number, "WITH": fault.reason, "ON": int(fault.on),
                "REPORT": windows_path(report), "KEY": self.key, "PLACES": int(places),
                "SHELL": windows_path(self.run_folder / "shell")}
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as said:  # see run_in_wine
            try:
                code = subprocess.run(
                    [*self.wine, str(self.run_folder / "program/veskbuild.exe"), *self.arguments],
                    check=False, stdin=subprocess.DEVNULL, stdout=output, stderr=said,
                    timeout=60 if after is None else after,
                    env=os.environ | {f"VESK_FAIL_{name}": str(value) for name, value in told.items()}).returncode
            except subprocess.TimeoutExpired:
                code = None
            lines, errors = (file.seek(0) or file.read().decode("cp1252") for file in (output, said))
        errors = "".join(line for line in errors.splitlines(True) if line.startswith("veskbuild:"))
        run = Run(code, lines.splitlines(), errors, picture(self.run_folder))
        if report.exists():
            run.read(report)
        return run

    def half_archives(self):
        """What stands half under an archive's name in the program folder."""
        return [f"half an archive: {name}" for name, content in self.sample.archives.items()
                if (path := self.run_folder / "program" / name).exists() and path.read_bytes() != content]

    def judge(self, fault, run):
        """What is wrong with a run; nothing when the program told the truth."""
        found = self.half_archives()
        told = [line for line in run.errors.splitlines() if (REASON if run.code in ENDS else ENDED).match(line)]
        if run.code is None:
            return ["hang"] + found
        if run.code == BROKEN_OFF and told and not run.calls:
            return found  # ended where it stood: a library of the system was not there
        if not run.calls or run.code not in (*ENDS, *REFUSALS, BROKEN_OFF):
            return [f"crash: exit code {run.code}"] + found
        log, problems = "program/veskbuider.log", "program/veskbuilder-problems.txt"
        differing = [name for name in run.differing(self.good)
                     if name != problems and (name != log or run.code == 0 and fault.call not in DATING)]
        if run.registry != self.good.registry:
            differing.append("registry")
        if run.code == 0 and (differing or run.errors):
            found.append(f"false success: {differing[:3]} {run.errors[:200]}")
        elif run.code != 0 and not told and fault.call not in PRINTING:
            found.append(f"silent: exit code {run.code}, {differing[:3]} {run.errors[:200]}")
        found += [f"untrue: {line}" for line in run.errors.splitlines() if UNTRUE.match(line)]
        if run.code in REFUSALS and run.made != self.untouched:
            found.append("refused, but something was changed")
        if WAITED in run.errors and (fault.call, fault.reason) != END_WITHOUT_NOTICE:
            found.append("waited: an event of the socket was lost")
        if run.code in ENDS and run.lines[-1:] != [LAST_LINE] and fault.call not in PRINTING:
            found.append("log: its last line is missing")
        if run.code in ENDS and log not in run.made and "veskbuider.log: not saved" not in run.errors:
            found.append("log: not saved, and not told")
        found += [f"left open: {count} {kind}" for kind, count in run.open.items()
                  if count > self.good.open[kind]]
        return found


def plan(good, tries_all):
    """The failures to try."""
    faults = []
    for call, count in good.calls.items():
        if count == 0 or not good.reasons[call]:
            continue
        draw = random.Random(f"1 {call}")  # how often another is called may depend on time
        drawn = draw.choice([1, count, draw.randint(1, count)])
        if not tries_all:
            faults.append(Fault(call, drawn, draw.choice(good.reasons[call])))
            continue
        if count <= SELDOM and call != "operator new":
            numbers = range(1, count + 1)
        else:
            numbers = sorted({count} | set(good.places[call]))
        for number in numbers:
            faults += [Fault(call, number, reason) for reason in good.reasons[call]]
            if DISK_FULL in good.reasons[call]:
                faults.append(Fault(call, number, DISK_FULL, True))
    random.Random(1).shuffle(faults)
    return faults


class Campaign:
    """All planned failures, by several workers. Their folder is the caller's to clean up."""

    def __init__(self, program, wine, tries_all, workers=1):
        self.folder = tempfile.TemporaryDirectory(prefix="vesk-failures-", ignore_cleanup_errors=True)
        self.builders = [Builder(pathlib.Path(self.folder.name), program, wine, f"w{i}")
                         for i in range(workers)]
        self.good = self.builders[0].good
        self.faults = plan(self.good, tries_all)
        self.tried, self.whole = collections.Counter(), collections.Counter()
        self.found = []

    def run(self, tell=lambda text: None):
        waiting = iter(self.faults)

        def work(builder):
            for fault in waiting:
                run = builder.build(fault)
                self.tried[fault.call] += 1
                self.whole[fault.call] += run.code == 0
                if self.tried.total() % 100 == 0:
                    tell(f"{self.tried.total()} tried")
                for what in builder.judge(fault, run):
                    self.found.append((fault, what))
                    tell(f"{fault}: {what}")

        with concurrent.futures.ThreadPoolExecutor(len(self.builders)) as pool:
            list(pool.map(work, self.builders))

    def table(self):
        found = collections.Counter(fault.call for fault, _ in self.found)
        lines = ["   calls   tried   whole   wrong  function"]
        lines += [f"{self.good.calls[call]:8}{tried:8}{self.whole[call]:8}{found[call]:8}  {call}"
                  for call, tried in self.tried.items()]
        silent = [call for call, count in self.good.calls.items() if count == 0]
        lines += [f"{self.tried.total()} tried, {self.whole.total()} whole, {len(self.found)} wrong",
                  "never called by the sample's build: " + ", ".join(silent)]
        return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("wine", nargs="+")
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--one", nargs="+")
    parser.add_argument("--only", default=".")
    parser.add_argument("--share", default="1/1", help="2/3: the second third of them")
    parser.add_argument("--workers", type=int, default=2)
    options = parser.parse_args()
    workers = 1 if options.one else options.workers
    campaign = Campaign(options.program.resolve(), options.wine, options.all, workers)
    with campaign.folder:
        if options.one:
            call, number, reason, *on = options.one
            fault = Fault(call, int(number), int(reason), bool(on))
            builder = campaign.builders[0]
            run = builder.build(fault)
            print("\n".join(run.lines), run.errors, run.code, *builder.judge(fault, run), sep="\n")
            print(*((name, run.made.get(name), builder.good.made.get(name))
                    for name in run.differing(builder.good)), sep="\n")
            return
        if campaign.good.code != 0 or campaign.good.errors:
            sys.exit(f"the build fails without a failure: {campaign.good}")
        share, shares = map(int, options.share.split("/"))
        campaign.faults = [fault for fault in campaign.faults
                           if re.search(options.only, fault.call)][share - 1::shares]
        print(f"{len(campaign.faults)} failures to try", flush=True)
        campaign.run(lambda text: print(text, flush=True))
        print(campaign.table())
        sys.exit(1 if campaign.found else 0)


if __name__ == "__main__":
    main()
