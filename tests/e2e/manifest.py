"""What a build left behind, as text: to be compared with a manifest in tests/data/builds.

    == log          the lines of the build log
    == problems     what was told on the error output
    == shortcuts    each with its target, working folder, arguments and icon
    == registry     what the scripts wrote
    == tree         folders and files with time of change (UTC) and attributes

Texts are shown whole, a line each behind "|"; long ones and other files by their size and CRC-32. A time that is
the build's own is "now".
"""

import datetime
import re
import struct
import zlib

from fixtures import run_in_wine
from program import WINE

TEXTS = (".inf", ".ini", ".txt", ".cmd", ".script")
LONG = 30  # lines


def attributes_of(folder):
    """Windows path below the folder to the letters that the system shows of its attributes. Not
    that for archiving: Wine shows it of every file."""
    shown = run_in_wine([*WINE, "attrib", folder + "\\*", "/s", "/d"], check=True, encoding="cp850").stdout
    found = re.findall(r"^([A-Z ]{11})\s*(\S.*)$", shown, re.MULTILINE)
    return {path[len(folder) + 1:].lower(): re.sub("[ A]", "", letters) for letters, path in found}


def tree_lines(folder, windows_folder, began):
    """Everything in a folder, sorted by name."""
    attributes = attributes_of(windows_folder)
    lines = []
    for path in sorted(folder.rglob("*"), key=lambda path: str(path).lower()):
        name = str(path.relative_to(folder)).replace("/", "\\")
        stat = path.stat()
        time = datetime.datetime.fromtimestamp(stat.st_mtime, datetime.timezone.utc)
        shown = "now" if stat.st_mtime >= began - 2 else time.strftime("%Y-%m-%d %H:%M:%S")
        flags = attributes.get(name.lower(), "?") or "-"
        if path.is_dir():
            lines.append(f"{name}\\  {shown}  {flags}")
            continue
        content = path.read_bytes()
        is_text = path.suffix.lower() in TEXTS and b"\0" not in content
        text = ["    | " + line for line in content.decode("cp1252").split("\r\n")] if is_text else []
        is_shown = text and (len(text) <= LONG or path.suffix == ".ini")
        size = "" if is_shown else f"  {len(content)} bytes, CRC {zlib.crc32(content):X}"
        lines += [f"{name}  {shown}  {flags}{size}", *(text if is_shown else [])]
    return lines


def shortcut(path):
    """The texts that a shortcut holds, by what they are."""
    data = path.read_bytes()
    flags = struct.unpack_from("<I", data, 20)[0]
    show = struct.unpack_from("<I", data, 60)[0]
    at = 76
    if flags & 1:  # a list of items
        at += 2 + struct.unpack_from("<H", data, at)[0]
    found = {}
    if flags & 2:  # where the target lies
        size, _, _, _, base = struct.unpack_from("<5I", data, at)
        found["target"] = data[at + base:].split(b"\0")[0].decode("cp1252")
        at += size
    for bit, name in ((4, "description"), (8, "relative"), (16, "folder"), (32, "arguments"),
                      (64, "icon")):
        if flags & bit:
            count = struct.unpack_from("<H", data, at)[0]
            found[name] = data[at + 2:at + 2 + 2 * count].decode("utf-16-le").strip("\0")
            at += 2 + 2 * count
    found["icon"] = f"{found.get('icon', '')},{struct.unpack_from('<i', data, 56)[0]}"
    found["show"] = str(show)
    return found


def shortcut_lines(links):
    lines = []
    for link in links:
        texts = shortcut(link) if link.exists() else {"missing": ""}
        lines.append(f"{link.parent.name}\\{link.name}")
        lines += [f"    {name}: {texts[name]}" for name in sorted(texts) if texts[name]]
    return lines


def registry_lines(key):
    asked = run_in_wine([*WINE, "reg", "query", key, "/s"], encoding="cp850")
    lines = asked.stdout.splitlines() if asked.returncode == 0 else []
    return [line.rstrip() for line in lines if line.strip()]


def forget_registry(key):
    run_in_wine([*WINE, "reg", "delete", key, "/f"])
