"""A whole build to make calls fail in: the sample, with an archive for each way of unpacking, an old
tree to remove, a list of digests, and two archives that come over HTTP, one by a detour and over what an
earlier download left."""

import hashlib
import pathlib
import re
import shutil
import socket
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from fixtures import (TOP, Member, crc_of, run_in_wine, windows_path, write_cab,  # noqa: E402
                      write_catalogue)
from net.peers import answer  # noqa: E402

sys.path.append(str(TOP / "sample"))
import make_sample  # noqa: E402

HOST = "http://sample.invalid/"
GONE, MOVED = f"{HOST}gone/hexview.zip", f"{HOST}moved/hexview.zip"
SERVED = {"pebuilder3110a.zip": f"{HOST}pebuilder3110a.zip", "hexview.zip": f"{GONE},{MOVED},{GONE}"}
LEFTOVER = "of a download that was killed"
LARGE = 4 << 20  # from this size on a member is written in pieces
KEPT = "penetcfg|bginfo|a43|aspi"  # stock plug-ins
# What a log says that may differ: times, and how far a plug-in that is not there was looked for.
CHANGING = re.compile(rb"\[\d+/\d+/\d{4} \d+:\d\d:\d\d [AP]M\]|"
                      rb"(?:Modifying INF file|Moving Folder): .*\\Plugin\\(?!%b|\d).*\n" % KEPT.encode())


class Sample:
    """The archives and the catalogue, made once; a fresh copy for each run. Two of the archives are
    served."""

    def __init__(self, folder, key, large=LARGE, send=socket.socket.sendall):
        self.folder, self.send = folder, send
        make_sample.main(folder)
        program = folder / "program"
        archives = {name: dict(files) for name, files in make_sample.ARCHIVES.items()}
        # Of what is done to the stock plug-ins a few times are enough: a build is short then.
        archives["pebuilder3110a.zip"] = {
            name: text for name, text in archives["pebuilder3110a.zip"].items()
            if not name.startswith("plugin/") or re.match(f"plugin/($|{KEPT})", name)}
        base = archives["livebase.zip"]
        base["livebase.script"] = base["livebase.script"].replace("Software\\Vesk Builder Sample", key)
        base["readme.txt"] = "In the place of the other archive's.\r\n"
        archives["large.zip"] = {"large.inf": make_sample.inf("Large"), "large.bin": "x" * large}
        for name, files in archives.items():
            write = make_sample.write_cab if name.endswith(".cab") else make_sample.write_zip
            write(program / name, files)
        write_cab(program / "pressed.cab", pressed=True, members=[
            Member("pressed.inf", make_sample.inf("Pressed")), Member("deep\\text.txt", "text\r\n" * 99)])
        entries = [(name, name, "300" if name in SERVED else "100", 1, 0, SERVED.get(name, ""),
                    crc_of(program / name)) for name in (*archives, "pressed.cab")]
        write_catalogue(program, entries[:2], entries[2:],
                        [(key, key + "_x") for key in ("100", "200", "300", "500")])
        shutil.copy(TOP / "packaging/readme.txt", program)
        self.archives = {name: (program / name).read_bytes() for name, *_ in entries}
        for name in SERVED:
            (program / name).unlink()
        (program / "veskbuilder.sha256").write_text("".join(
            f"{hashlib.sha256(content).hexdigest()} *{name}\n" for name, content in self.archives.items()))
        (program / "hexview.zip.vesk-part").write_text(LEFTOVER)

    def fill(self, folder, executable):
        """A program folder, and the tree of an earlier build."""
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(self.folder / "program", folder / "program", dirs_exist_ok=True)
        (folder / "program" / "veskbuild.exe").symlink_to(executable)
        for name in ("tree/Plugin/old/deep", "shell/16", "shell/23/Vesk Builder"):
            (folder / name).mkdir(parents=True)
        for name in ("tree/vesklive.ini", "tree/Plugin/old/deep/a.txt", "tree/Plugin/b.txt",
                     "shell/16/Vesk Builder.lnk", "shell/23/Vesk Builder/Old.lnk"):
            (folder / name).write_text("old")
        (folder / "tree/Plugin/b.txt").chmod(0o444)

    def serve(self, connection, url):
        """Lacks what is asked for at one place, and sends from another one to the archive."""
        if "/gone/" in url:
            self.send(connection, answer(b"", status="HTTP/1.1 404 Not Found"))
        elif "/moved/" in url:
            self.send(connection, answer(b"", f"Location: {url.replace('/moved/', '/')}",
                                         status="HTTP/1.1 302 Found"))
        else:
            self.send(connection, answer(self.archives[url.rsplit("/", 1)[1]]))


def catalogue_text(folder):
    """Without the day on which it was saved; empty where there is none."""
    path = folder / "veskbuilder.ini"
    return re.sub(rb"(?m)^; Date: .*$", b"", path.read_bytes() if path.exists() else b"")


class SavedCatalogue:
    """The sample's catalogue, and what may stand in its place while save_tool is at work."""

    def __init__(self, sample, tool, wine, place):
        self.path = sample / "program/veskbuilder.ini"
        self.command = [*wine, str(tool), windows_path(place) + "\\"]
        self.texts = {catalogue_text(self.path.parent)}
        place.mkdir()
        for count in "12":
            shutil.copy(self.path, place)
            run_in_wine([*self.command, count], check=True)
            self.texts.add(catalogue_text(place))
        assert len(self.texts) == 3
        shutil.rmtree(place)

    def faults(self, folder):
        text = catalogue_text(folder)
        return [] if text in self.texts else [f"half a catalogue: {len(text)} characters"]


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
            content = CHANGING.sub(b"", content)
        if name.endswith(".lnk"):
            content = without_times(content)
        old = int(stat.st_mtime) if stat.st_mtime < 1.3e9 else "now"
        result[name] = (hash(content), len(content), old, bool(stat.st_mode & 0o200))
    return result
