"""Checksums, ZIP archives and cabinets."""

import random
import re
import shutil
import statistics
import subprocess

import data
from harness import TOP, Row, Skip, at_least, at_most, below, in_turn, windows_path

SEVEN_ZIPS = {64: "package/win/x64/7za.exe", 32: "package/win/ia32/7za.exe"}


def seven_zip(wine):
    """7-Zip for Windows, from the npm package 7zip-bin into the build folder at the first call."""
    program = TOP / "build/bench" / SEVEN_ZIPS[wine.bits]
    if not program.exists():
        folder = TOP / "build/bench"
        folder.mkdir(parents=True, exist_ok=True)
        try:
            package = subprocess.run(
                ["npm", "pack", "--silent", "--pack-destination", str(folder), "7zip-bin"],
                check=True, capture_output=True, text=True, timeout=120).stdout.split()[-1]
            subprocess.run(["tar", "xzf", str(folder / package), "-C", str(folder),
                            *SEVEN_ZIPS.values()], check=True)
        except (OSError, subprocess.SubprocessError) as error:
            raise Skip(f"7-Zip for Windows is not to be had ({error})") from error
    return program


def unpack_by_seven_zip(wine, archives, target):
    """Milliseconds that 7-Zip says it took, without its own start."""
    said = wine.run(seven_zip(wine), "x", "-y", "-bt", "-o" + target, archives)
    return 1000 * float(re.search(r"Global +Time = +([\d.]+)", said)[1])


def unpack_in_turn(wine, rounds, archive, target):
    """Milliseconds of UnzipFile and of 7-Zip, and the longest silences of ours."""
    seven_zip(wine)
    silences = []

    def ours():
        shutil.rmtree(target, ignore_errors=True)
        took, silence = wine.tool("unzip", windows_path(archive), windows_path(target))[0]
        silences.append(silence)
        return took

    def peer():
        shutil.rmtree(target, ignore_errors=True)
        return unpack_by_seven_zip(wine, windows_path(archive), windows_path(target))

    mine, theirs = in_turn(rounds, ours=ours, peer=peer)
    shutil.rmtree(target, ignore_errors=True)
    return mine, theirs, silences


def checksum(wine, folder, rounds):
    file = folder / "64MiB"
    file.write_bytes(random.Random(2).randbytes(64 << 20))
    lines = wine.tool("checksum", windows_path(file), 3 * rounds + 1)[1:]
    fetch, look, crc = zip(*lines)
    file.unlink()
    yield Row("CalculateFile, 64 MiB, to looking at every byte", crc, look, at_most(1.15),
              f"only fetching them: {statistics.median(fetch):.1f} ms")


def zip_tree(wine, folder, rounds):
    archive, target = folder / "tree.zip", folder / "out"
    size = data.tree_archive(archive)
    name = f"ZIP, 1,500 files, {size / 1e6:.0f} MB"
    try:
        ours, theirs, _ = unpack_in_turn(wine, rounds, archive, target)
        yield Row(name + ", to 7-Zip", ours, theirs, at_least(3.5))
    except Skip as reason:
        yield name, reason

    def action(name):
        def work():
            shutil.rmtree(target, ignore_errors=True)
            return wine.figure(name, windows_path(archive), windows_path(target))
        return work

    ours, create, inflate = in_turn(rounds, ours=action("unzip"), create=action("create"),
                                    inflate=action("inflate"))
    yield Row(name + ", to creating + inflating", ours,
              [files + bits for files, bits in zip(create, inflate)], at_most(1.10),
              f"creating {statistics.median(create):.0f} ms, "
              f"inflating {statistics.median(inflate):.0f} ms")
    shutil.rmtree(target, ignore_errors=True)


def zip_small(wine, folder, rounds):
    target, each, memory = folder / "out", {}, {}
    for members in (100, 1000, 10_000, 100_000):
        archive = folder / f"small{members}.zip"
        data.small_archive(archive, members)
        ours, theirs, _ = unpack_in_turn(wine, rounds if members < 100_000 else 1, archive, target)
        each[members] = [took / members for took in ours]
        yield Row(f"ZIP, {members:,} small members", ours, theirs, at_least(3.3))
        memory[members] = wine.peak_memory(wine.built / "bench/bench_tool.exe", "unzip",
                                           windows_path(archive), windows_path(target))
        shutil.rmtree(target)
        archive.unlink()
    times = {members: statistics.median(series) for members, series in each.items()}
    yield Row("ZIP, time of a member, dearest to cheapest", [max(times.values())],
              [min(times.values())], at_most(1.2),
              ", ".join(f"{members:,}: {took:.3f} ms" for members, took in times.items()))
    yield Row("ZIP, memory for 100,000 to that for 100 members", [memory[100_000]], [memory[100]],
              at_most(1.2), unit="MiB")


def zip_large(wine, folder, rounds):
    archive, target = folder / "large.zip", folder / "out"
    data.large_archive(archive, 500)
    try:
        ours, theirs, silences = unpack_in_turn(wine, min(rounds, 5), archive, target)
        yield Row("ZIP, one member of 500 MB", ours, theirs, at_most(1),
                  f"longest time without progress {statistics.median(silences):.0f} ms")
    except Skip as reason:
        yield "ZIP, one member of 500 MB", reason
    peak = wine.peak_memory(wine.built / "bench/bench_tool.exe", "unzip", windows_path(archive),
                            windows_path(target))
    yield Row("... its memory", [peak], None, below(64, "MiB"), unit="MiB")
    shutil.rmtree(target)


def cabinets(wine, folder, rounds):
    if shutil.which("gcab") is None:
        raise Skip("gcab is not installed")
    source, target = folder / "tree", folder / "out"
    data.tree_archive(folder / "tree.zip")
    shutil.unpack_archive(folder / "tree.zip", source)
    names = sorted(str(path.relative_to(source)) for path in source.rglob("*") if path.is_file())
    for kind, options in (("stored", []), ("MSZIP", ["-z"])):
        cabinet = folder / f"{kind}.cab"
        subprocess.run(["gcab", "-c", *options, str(cabinet), *names], cwd=source, check=True,
                       stdout=subprocess.DEVNULL)

        def action(name):
            def work():
                shutil.rmtree(target, ignore_errors=True)
                return wine.figure(name, windows_path(cabinet), windows_path(target))
            return work

        ours, bare = in_turn(rounds, ours=action("cabinet"), bare=action("cabinet-setup"))
        yield Row(f"cabinet, {kind}, to SetupIterateCabinet", ours, bare, at_most(1.1))
    shutil.rmtree(target)


GROUPS = {"checksum": checksum, "zip": zip_tree, "small": zip_small, "large": zip_large,
          "cabinet": cabinets}
