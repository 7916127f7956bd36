"""Downloads from nginx on the loopback, beside curl."""

import functools
import re
import shutil
import subprocess

import data
from harness import Row, Skip, at_most, fresh, in_turn
from peers import Nginx

MEGABYTES = 256
# The wizard takes 256 plug-ins at most; a thousand archives in one folder also measure how that is
# searched.
SMALL = (250, 1000)


def curl(*arguments):
    """Milliseconds that curl says its transfers took, without its own start."""
    said = subprocess.run(["curl", "-sS0", "-w", "%{time_total}\n", *map(str, arguments)],
                          check=True, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    return 1000 * sum(map(float, said.stdout.split()))


def large(wine, folder, nginx, rounds):
    target = folder / "target.bin"
    with open(nginx.root / "big.bin", "wb") as big:
        for _ in range(MEGABYTES):
            big.write(b"vesk" * 250_000)

    def ours():
        target.unlink(missing_ok=True)
        said = wine.run(wine.built / "tests/net/download_tool.exe", "--only-time", "--access", 2,
                        "--proxy", f"127.0.0.1:{nginx.port}", "http://h/big.bin", target)
        assert target.stat().st_size == MEGABYTES * 1_000_000, "the file is not complete"
        return float(re.search(r"Milliseconds (\d+)", said)[1])

    def peer():
        return curl("-o", target, f"http://127.0.0.1:{nginx.port}/big.bin")

    mine, theirs = in_turn(rounds, ours=ours, peer=peer)
    yield Row(f"{MEGABYTES} MB from nginx, to curl", mine, theirs, at_most(0.8))


def small(wine, folder, nginx, count, rounds):
    """Through the delivered program: what a build takes longer that has to download its plug-ins
    than one that has them. They are no archives, so nothing is extracted in either."""
    folder = folder / str(count)
    program, target = data.program_folder(wine, folder), folder / "small.bin"
    data.small_archive(program / "pebuilder3110a.zip", 1)
    (nginx.root / "small.bin").write_bytes(b"vesk" * 256)
    checksum = data.crc_of(nginx.root / "small.bin")
    data.write_catalogue(program, [(f"plugin{number}.bin", "http://h/small.bin", checksum)
                                   for number in range(count)])
    build = fresh(folder / "tree", functools.partial(
        wine.time, program / "veskbuild.exe", "--yes", "--quiet", "--install", folder / "tree",
        "--proxy", f"127.0.0.1:{nginx.port}", codes=(1,)))

    def ours():
        for plugin in program.glob("*.bin"):
            plugin.unlink()
        took = build()
        assert len(list(program.glob("*.bin"))) == count, "not all was downloaded"
        return took

    transfers = ["-o", target, f"http://127.0.0.1:{nginx.port}/small.bin"] * count
    downloading, without, theirs = in_turn(rounds, ours=ours, without=build,
                                           peer=lambda: curl("-H", "Connection: close", *transfers))
    yield Row(f"{count:,} downloads of 1 KiB by veskbuild, to curl",
              [took - rest for took, rest in zip(downloading, without)], theirs, at_most(3))


def downloads(wine, folder, rounds):
    for program in ("curl", "nginx"):
        if shutil.which(program, path="/usr/sbin:/usr/bin:/usr/local/bin") is None:
            raise Skip(f"{program} is not installed")
    nginx = Nginx(folder / "nginx")
    try:
        yield from large(wine, folder, nginx, rounds)
        for count in SMALL:
            yield from small(wine, folder, nginx, count, min(rounds, 5))
    finally:
        nginx.stop()


GROUPS = {"download": downloads}
