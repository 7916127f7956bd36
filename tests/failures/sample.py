"""A whole build to make calls fail in: the sample, with an archive for each way of unpacking, an old
tree to remove, a list of digests, and two archives that come over HTTP, one by a detour and over what an
earlier download left."""

import functools
import hashlib
import pathlib
import re
import shutil
import sys
import threading

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from fixtures import TOP, Member, crc_of, run_in_wine, windows_path, write_cab  # noqa: E402

sys.path.append(str(TOP / "sample"))
import make_sample  # noqa: E402
from serve import Handler, server_of  # noqa: E402

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
    """The archives and the catalogue, made once; a fresh copy for each run."""

    def __init__(self, folder, key, large=LARGE):
        self.folder = folder
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
        self.write_catalogue(program)
        shutil.copy(TOP / "packaging/readme.txt", program)
        for name in SERVED:
            (program / name).replace(folder / "server" / name)
        self.archives = {path.name: path.read_bytes() for place in ("program", "server")
                         for path in (folder / place).iterdir() if path.suffix in (".zip", ".cab")}
        (program / "veskbuilder.sha256").write_text("".join(
            f"{hashlib.sha256(content).hexdigest()} *{name}\n" for name, content in self.archives.items()))
        (program / "hexview.zip.vesk-part").write_text(LEFTOVER)

    @staticmethod
    def write_catalogue(program):
        path = program / "veskbuilder.ini"
        text = path.read_bytes().decode("cp1252")
        more = "".join(f"Name{i}={name} \r\nZip{i}={archive} \r\nCat{i}=100 \r\nEnabled{i}=1\r\n"
                       f"Lock{i}=0\r\nUrl{i}= \r\nCRC{i}= \r\n"
                       for i, name, archive in ((5, "Large", "large.zip"), (6, "Pressed", "pressed.cab")))
        text = text.replace("[Categories]", more + "[Categories]").replace("Enabled1=0", "Enabled1=1")
        for number, name in re.findall(r"^Zip(\d+)=(\S+)", text, re.MULTILINE):
            text = re.sub(rf"(Zip{number}={name} (?:.*\n)+?Url{number}=).*?( ?\r\nCRC{number}=)\S*",
                          rf"\g<1>{SERVED.get(name, '')}\g<2>{crc_of(program / name)}", text)
        path.write_bytes(text.encode("cp1252"))

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


class Detour(Handler):
    """A server that lacks what is asked for at one place, and sends from another one to the archive."""

    def do_GET(self):
        if "/gone/" in self.path:
            return self.send_error(404, "Not Found")
        if "/moved/" not in self.path:
            return super().do_GET()
        self.send_response(302)
        self.send_header("Location", self.path.replace("/moved/", "/"))
        self.send_header("Content-Length", "0")
        return self.end_headers()


def serve(folder):
    """@return a server of the archives, which ends with this process at the latest"""
    server = server_of(folder / "server")
    server.RequestHandlerClass = functools.partial(Detour, directory=folder / "server")
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server
