"""Checksums, ZIP archives and cabinets."""

import random
import re
import shutil
import statistics
import subprocess

import data
from harness import TOP, Goal, Row, Skip, at_least, at_most, fresh, in_turn, windows_path

SEVEN_ZIPS = {64: "package/win/x64/7za.exe", 32: "package/win/ia32/7za.exe"}


def seven_zip(wine):
    """7-Zip for Windows, from the npm package 7zip-bin into the build folder at the first call."""
    folder = TOP / "build/bench"
    program = folder / SEVEN_ZIPS[wine.bits]
    if not program.exists():
        folder.mkdir(parents=True, exist_ok=True)
        try:
            package = subprocess.run(
                ["npm", "pack", "--silent", "--pack-destination", folder, "7zip-bin"],
                check=True, capture_output=True, text=True, timeout=120).stdout.split()[-1]
            subprocess.run(["tar", "xzf", folder / package, "-C", folder, *SEVEN_ZIPS.values()], check=True)
        except (OSError, subprocess.SubprocessError) as error:
            raise Skip(f"7-Zip for Windows is not to be had ({error})") from error
    return program


def unpack_in_turn(wine, rounds, archive, target):
    """Milliseconds of UnzipFile and those that 7-Zip says it took, without its own start, and the
    longest silences of ours."""
    def peer():
        said = wine.run(seven_zip(wine), "x", "-y", "-bt", "-o" + windows_path(target), archive)
        return 1000 * float(re.search(r"Global +Time = +([\d.]+)", said)[1])

    seven_zip(wine)
    ours, theirs = in_turn(rounds, ours=fresh(target, wine.tool, "unzip", archive, target),
                           peer=fresh(target, peer))
    shutil.rmtree(target, ignore_errors=True)
    return [took for took, _ in ours], theirs, [silence for _, silence in ours]


def checksum(wine, folder, rounds):
    file = folder / "64MiB"
    file.write_bytes(random.Random(2).randbytes(64 << 20))
    figures = wine.tool("checksum", file, 3 * rounds + 1)
    fetch, look, crc = (figures[kind + 3::3] for kind in range(3))
    file.unlink()
    yield Row("CalculateFile, 64 MiB, to looking at every byte", crc, look, at_most(1.15),
              f"only fetching them: {statistics.median(fetch):.1f} ms")


def zip_tree(wine, folder, rounds):
    archive, target = folder / "tree.zip", folder / "out"
    size = data.tree_archive(archive)
    name = f"ZIP, 1,500 files, {size / 1e6:.0f} MB"
    ours, create, inflate = in_turn(
        rounds, **{action: fresh(target, wine.figure, action, archive, target)
                   for action in ("unzip", "create", "inflate")})
    yield Row(name + ", to creating + inflating", ours,
              [files + bits for files, bits in zip(create, inflate)], at_most(1.10),
              f"creating {statistics.median(create):.0f} ms, "
              f"inflating {statistics.median(inflate):.0f} ms")
    ours, theirs, _ = unpack_in_turn(wine, rounds, archive, target)
    yield Row(name + ", to 7-Zip", ours, theirs, at_least(3.5))


def zip_small(wine, folder, rounds):
    target, times, memory = folder / "out", {}, {}
    for members in (100, 1000, 10_000, 100_000):
        archive = folder / f"small{members}.zip"
        data.small_archive(archive, members)
        ours, theirs, _ = unpack_in_turn(wine, rounds if members < 100_000 else 1, archive, target)
        times[members] = statistics.median(ours) / members
        yield Row(f"ZIP, {members:,} small members", ours, theirs, at_least(3.3))
        memory[members] = wine.peak_memory("unzip", archive, target)
        shutil.rmtree(target)
        archive.unlink()
    yield Row("ZIP, time of a member, dearest to cheapest", [max(times.values())],
              [min(times.values())], at_most(1.2),
              ", ".join(f"{members:,}: {took:.3f} ms" for members, took in times.items()))
    yield Row("ZIP, memory for 100,000 to that for 100 members", [memory[100_000]], [memory[100]],
              at_most(1.2), unit="MiB")


def zip_large(wine, folder, rounds):
    archive, target = folder / "large.zip", folder / "out"
    data.large_archive(archive, 500)
    name = "ZIP, one member of 500 MB"
    yield Row(name + ", memory", [wine.peak_memory("unzip", archive, target)], None, Goal("MiB", 64),
              unit="MiB")
    ours, theirs, silences = unpack_in_turn(wine, min(rounds, 5), archive, target)
    yield Row(name, ours, theirs, at_most(1),
              f"longest time without progress {statistics.median(silences):.0f} ms")
    ours, zlib = in_turn(min(rounds, 5), **{
        action: fresh(target, wine.figure, action, archive, target) for action in ("unzip", "zlib")})
    yield Row(name + ", to zlib alone", ours, zlib, at_most(1))


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
        ours, bare = in_turn(rounds, **{action: fresh(target, wine.figure, action, cabinet, target)
                                        for action in ("cabinet", "cabinet-setup")})
        yield Row(f"cabinet, {kind}, to SetupIterateCabinet", ours, bare, at_most(1.1))
    shutil.rmtree(target)


GROUPS = {"checksum": checksum, "zip": zip_tree, "small": zip_small, "large": zip_large,
          "cabinet": cabinets}
