"""A whole build to make calls fail in: the sample, with an archive for each way of unpacking, an old
tree to remove, and two archives that come over HTTP."""

import pathlib
import re
import shutil
import struct
import subprocess
import sys
import zlib

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "sample"))
import make_sample  # noqa: E402

SERVED = ("pebuilder3110a.zip", "hexview.zip")
LARGE = 4 << 20  # from this size on a member is written in pieces
DATE = re.compile(rb"\[\d+/\d+/\d{4} \d+:\d\d:\d\d [AP]M\]")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def write_lzx_cab(path, files):
    """A cabinet that the system's library unpacks: LZX, of one block that is not compressed."""
    data = b"".join(text.encode() for text in files.values())
    head = 3 << 28 | len(data) << 4  # no translation, kind 3, length, filled up to 16 bits
    packed = struct.pack("<HHIII", head >> 16, head & 0xFFFF, 1, 1, 1) + data + b"\0" * (len(data) % 2)
    names = [name.encode() + b"\0" for name in files]
    data_at = 44 + sum(16 + len(name) for name in names)
    cabinet = struct.pack("<4s5I2B5H", b"MSCF", 0, data_at + 8 + len(packed), 0, 44, 0, 3, 1, 1,
                          len(files), 0, 0, 0) + struct.pack("<IHH", data_at, 1, 0x0F03)
    offset = 0
    for name, text in zip(names, files.values()):
        cabinet += struct.pack("<II4H", len(text), offset, 0, 0x34A4, 0x1841, 0x20) + name
        offset += len(text)
    path.write_bytes(cabinet + struct.pack("<IHH", 0, len(packed), len(data)) + packed)


class Sample:
    """The archives and the catalogue, made once; a fresh copy for each run."""

    def __init__(self, folder, key, large=LARGE):
        self.folder = folder
        make_sample.main(folder)
        program = folder / "program"
        archives = {name: dict(files) for name, files in make_sample.ARCHIVES.items()}
        # Of what is done to the stock plug-ins a few times are enough: a build is short then.
        archives["pebuilder3110a.zip"] = {
            name: text for name, text in archives["pebuilder3110a.zip"].items()
            if not name.startswith("plugin/") or re.match("plugin/($|penetcfg|bginfo|a43|aspi)", name)}
        base = archives["livebase.zip"]
        base["livebase.script"] = base["livebase.script"].replace("Software\\Vesk Builder Sample", key)
        base["readme.txt"] = "In the place of the other archive's.\r\n"
        archives["large.zip"] = {"large.inf": make_sample.inf("Large"), "large.bin": "x" * large}
        for name, files in archives.items():
            write = make_sample.write_cab if name.endswith(".cab") else make_sample.write_zip
            write(program / name, files)
        write_lzx_cab(program / "pressed.cab",
                      {"pressed.inf": make_sample.inf("Pressed"), "deep\\text.txt": "text\r\n" * 99})
        self.write_catalogue(program)
        shutil.copy(TOP / "packaging/readme.txt", program)
        for name in SERVED:
            (program / name).replace(folder / "server" / name)
        self.archives = {path.name: path.read_bytes() for place in ("program", "server")
                         for path in (folder / place).iterdir() if path.suffix in (".zip", ".cab")}

    @staticmethod
    def write_catalogue(program):
        path = program / "veskbuilder.ini"
        text = path.read_bytes().decode("cp1252")
        more = "".join(f"Name{i}={name} \r\nZip{i}={archive} \r\nCat{i}=100 \r\nEnabled{i}=1\r\n"
                       f"Lock{i}=0\r\nUrl{i}= \r\nCRC{i}= \r\n"
                       for i, name, archive in ((5, "Large", "large.zip"), (6, "Pressed", "pressed.cab")))
        text = text.replace("[Categories]", more + "[Categories]").replace("Enabled1=0", "Enabled1=1")
        for number, name in re.findall(r"^Zip(\d+)=(\S+)", text, re.MULTILINE):
            crc = f"{zlib.crc32((program / name).read_bytes()):X}"
            url = f"http://sample.invalid/{name}" if name in SERVED else ""
            text = re.sub(rf"(Zip{number}={name} (?:.*\n)+?Url{number}=).*?( ?\r\nCRC{number}=)\S*",
                          rf"\g<1>{url}\g<2>{crc}", text)
        path.write_bytes(text.encode("cp1252"))

    def fill(self, folder, executable):
        """A program folder, and the tree of an earlier build."""
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(self.folder / "program", folder / "program")
        (folder / "program" / "veskbuild.exe").symlink_to(executable)
        for name in ("tree/Plugin/old/deep", "shell/16", "shell/23/Vesk Builder"):
            (folder / name).mkdir(parents=True)
        for name in ("tree/vesklive.ini", "tree/Plugin/old/deep/a.txt", "tree/Plugin/b.txt",
                     "shell/16/Vesk Builder.lnk", "shell/23/Vesk Builder/Old.lnk"):
            (folder / name).write_text("old")
        (folder / "tree/Plugin/b.txt").chmod(0o444)


def without_times(link):
    """A shortcut without the times of its target: in its head, and in the list behind it."""
    if len(link) < 78:
        return link
    return link[:28] + link[52:76] + link[78 + int.from_bytes(link[76:78], "little"):]


def picture(folder):
    """Everything that a run made, by name; what depends on the time of day taken out."""
    result = {}
    for path in sorted(folder.rglob("*")):
        name = str(path.relative_to(folder))
        if path.is_symlink():
            continue
        if path.is_dir():
            result[name] = "folder"
            continue
        stat = path.stat()
        content = path.read_bytes()
        if name == "program/veskbuider.log":
            content = DATE.sub(b"[DATE]", content)
        if name.endswith(".lnk"):
            content = without_times(content)
        old = int(stat.st_mtime) if stat.st_mtime < 1.3e9 else "now"
        result[name] = (hash(content), len(content), old, bool(stat.st_mode & 0o200))
    return result


def serve(folder):
    """@return the process that serves the archives, and its port"""
    process = subprocess.Popen([sys.executable, TOP / "sample/serve.py", folder / "server"],
                               stdout=subprocess.PIPE, text=True)
    return process, int(process.stdout.readline())
