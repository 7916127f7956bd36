"""What tests of several folders start from: paths as Windows programs know them, archives with all
that a member may carry (time, attributes, storing), small disks, terminals, comparisons."""

import difflib
import os
import pathlib
import pty
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import time
import tty
import zipfile
import zlib
from typing import NamedTuple

TOP = pathlib.Path(__file__).resolve().parents[1]


def fresh_folder(test, prefix):
    """A folder that goes with its test."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix=prefix))
    test.addCleanup(shutil.rmtree, folder)
    return folder


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Member(NamedTuple):
    """@c stamp is local time; @c unix_time, where it is given, says the same exactly."""
    name: str
    text: str | bytes = ""
    stamp: tuple = (2006, 5, 4, 3, 2, 2)
    attributes: int = 0x20
    kind: int = zipfile.ZIP_DEFLATED
    unix_time: int | None = None

    @property
    def content(self):
        return self.text if isinstance(self.text, bytes) else self.text.encode("cp1252")


def crc_of(path):
    """An archive's checksum as catalogues hold it."""
    return f"{zlib.crc32(path.read_bytes()):X}"


def write_zip(path, members):
    with zipfile.ZipFile(path, "w") as archive:
        for member in members:
            info = zipfile.ZipInfo(member.name, member.stamp)
            info.filename = member.name  # as it is, whatever the class makes of it
            info.create_system = 0
            info.external_attr = member.attributes
            info.compress_type = member.kind
            if member.unix_time is not None:
                info.extra = struct.pack("<HHBI", 0x5455, 5, 1, member.unix_time)
            archive.writestr(info, member.content)


def write_cab(path, members, pressed=False):
    """All members in one folder and one block: stored, or pressed as the system's library only
    unpacks it (LZX, of one block that is not compressed)."""
    names = [member.name.encode("cp1252") + b"\0" for member in members]
    data = packed = b"".join(member.content for member in members)
    if pressed:
        head = 3 << 28 | len(data) << 4  # no translation, kind 3, length, filled up to 16 bits
        packed = struct.pack("<HHIII", head >> 16, head & 0xFFFF, 1, 1, 1) + data + b"\0" * (len(data) % 2)
    data_at = 36 + 8 + sum(16 + len(name) for name in names)
    cabinet = struct.pack("<4s5I2B5H", b"MSCF", 0, data_at + 8 + len(packed), 0, 44, 0, 3, 1, 1,
                          len(members), 0, 0, 0) + struct.pack("<IHH", data_at, 1, 0x0F03 if pressed else 0)
    offset = 0
    for name, member in zip(names, members):
        year, month, day, hour, minute, second = member.stamp
        cabinet += struct.pack("<IIHHHH", len(member.content), offset, 0, (year - 1980) << 9 | month << 5 | day,
                               hour << 11 | minute << 5 | second // 2, member.attributes) + name
        offset += len(member.content)
    path.write_bytes(cabinet + struct.pack("<IHH", 0, len(packed), len(data)) + packed)


def write_archive(path, *members):
    """Returns its checksum."""
    (write_cab if path.suffix == ".cab" else write_zip)(path, members)
    return crc_of(path)


def write_catalogue(folder, base, plugins=(), categories=(("100", "100_tools"),),
                    install=("VeskLive", 0), show_categories=-1):
    """Entries are (name, archive, category, enabled, lock, url, crc)."""
    lines = ["[Install]", f"Folder={install[0]}", f"Path={install[1]}"]
    for section, entries in (("Base", base), ("Plugin", plugins)):
        lines.append(f"[{section}]")
        for i, (name, zip_name, cat, enabled, lock, url, crc) in enumerate(entries):
            lines += [f"Name{i}={name} ", f"Zip{i}={zip_name} "]
            lines += [f"Cat{i}={cat} "] if section == "Plugin" else []
            lines += [f"Enabled{i}={enabled}", f"Lock{i}={lock}", f"Url{i}={url} ", f"CRC{i}={crc} "]
    lines += ["[Categories]", f"ShowCategories={show_categories}"] + [f"{k}={v}" for k, v in categories]
    (folder / "veskbuilder.ini").write_text("\r\n".join(lines) + "\r\n", "cp1252", newline="")


def mount_disk(place, size):
    """Makes a folder a disk of so many bytes, in place of the one that it was.
    @return whether that is possible here"""
    place.mkdir(exist_ok=True)
    unmount_disk(place)
    return subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", place],
                          capture_output=True, check=False).returncode == 0


def unmount_disk(place):
    """Something may look into it just now: that is waited for."""
    for _ in range(100):
        if place.is_mount() and subprocess.run(["umount", place], capture_output=True, check=False).returncode:
            time.sleep(0.2)
    if place.is_mount():
        run_whole(["umount", place])


def run_in_wine(command, check=False, encoding=None, timeout=100, **options):
    """As subprocess.run with a time limit, all that was said in the result. It is kept in files: where
    Wine's own processes begin with this program, they would hold pipes open after its end.

    On a busy machine Wine's server ends a process now and then, with 1 and without a word. Our programs
    say something whenever they return 1, so such a run is started again, once."""
    kept = {"mode": "w+" if encoding else "w+b", "encoding": encoding}
    options = ({} if "input" in options else {"stdin": subprocess.DEVNULL}) | options
    for attempt in "first", "last":
        with tempfile.TemporaryFile(**kept) as output, tempfile.TemporaryFile(**kept) as errors:
            try:
                code = subprocess.run(command, check=False, timeout=timeout,
                                      **{"stdout": output, "stderr": errors} | options).returncode
            except subprocess.TimeoutExpired:
                code = f"no end within {timeout} s"
            for file in (output, errors):
                file.seek(0)
            result = subprocess.CompletedProcess(command, code, output.read(), errors.read())
        if code != 1 or result.stdout or result.stderr:
            break
        print(f"ended by Wine: the {attempt} run", file=sys.stderr, flush=True)
    if isinstance(code, str) or check and code:
        raise AssertionError(str(result))
    return result


def run_whole(command, **options):
    """Runs a program that must return 0; when it does not, what it said is shown."""
    result = subprocess.run(command, check=False, capture_output=True, text=True, errors="replace", **options)
    if result.returncode:
        raise AssertionError(str(result))
    return result


def run_on_a_terminal(test, command, react, **streams):
    """Runs a program whose error output, and its input unless stated otherwise, is a terminal of 60
    columns.
    @param react called with the process, what was shown so far, and the terminal; again and again
    @return exit code, and what the terminal showed"""
    try:
        terminal, program_side = pty.openpty()
    except OSError as error:
        test.skipTest(f"no pseudo-terminal to be had: {error}")
    tty.setraw(program_side)
    termios.tcsetwinsize(program_side, (25, 60))
    test.addCleanup(os.close, terminal)
    streams = {"stdin": program_side, "stdout": subprocess.DEVNULL, "stderr": program_side} | streams
    process = subprocess.Popen(command, start_new_session=True, **streams)
    os.close(program_side)

    def read(seconds):
        """@return nothing when nothing comes or the other side is closed"""
        try:
            return os.read(terminal, 65536) if select.select([terminal], [], [], seconds)[0] else b""
        except OSError:
            return b""

    shown, deadline = b"", time.monotonic() + 60
    while process.poll() is None and time.monotonic() < deadline:
        shown += read(0.02)
        react(process, shown, terminal)
    if process.poll() is None:
        process.kill()
    code = process.wait(60)
    while rest := read(0.1):
        shown += rest
    return code, shown


def compare(test, path, found):
    """Fails with the differences between some lines and those of a file below tests/data."""
    path = TOP / "tests/data" / path
    wanted = path.read_text("utf-8").splitlines() if path.exists() else []
    if found != wanted:
        test.fail("\n".join(difflib.unified_diff(wanted, found, str(path), "this run", "", "", 2, "")))
