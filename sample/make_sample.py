#!/usr/bin/env python3
"""Makes the stand-ins that the demonstration catalogue names.

    make_sample.py FOLDER

FOLDER/program  the archives for the program folder, and the catalogue
FOLDER/server   the archive that the program folder lacks, to be served over HTTP
FOLDER/source   a folder that passes as a Windows installation source

Everything in them is harmless text. The same call gives the same bytes, so the checksums in the
catalogue hold; where they do not, the recipe stops and prints those that it got.
"""

import pathlib
import re
import struct
import sys
import zipfile
import zlib

HERE = pathlib.Path(__file__).parent
STAMP = (2006, 5, 4, 3, 2, 2)

REMOVED = ["!custom", "autorun", "a43", "corepe", "bst5", "chkdsk", "deepburner", "dospe", "dskcmd",
           "erd2002", "nu2menu", "putty", "snapshot", "StarWind", "ultravnc", "zz5"]
MOVED = ["bootfix/bootfix", "dcomlaunch/dcomlaunch", "mstsc/mstsc", "peinst/peinst",
         "penetcfg/penetcfg", "ramdisk/ramdisk", "sermouse/sermouse", "keyboard/keyboard",
         "bginfo/bginfo", "ghost8/ghost", "irfanview/irfanview", "nero burning rom/penero",
         "total commander/totalcmd", "aspi/aspi", "adawarese/adawarese", "mcafee/mcafee",
         "stinger/stinger"]


def inf(name, *more):
    """A plug-in INF; further sections are given as lines."""
    lines = ["[Version]", 'Signature="$Windows NT$"', "", "[PEBuilder]", f'Name="{name}"',
             "Enable=1", ""]
    return "\r\n".join(lines + list(more)) + "\r\n"


def menu(file):
    return ("[Append]", f"nu2menu.xml, {file}", "")


def pe_builder():
    files = {
        "pebuilder.exe": "Stand-in for PE Builder's program. It does not run.\r\n",
        "mkisofs.exe": "Stand-in for the ISO writer. It does not run.\r\n",
        "readme.txt": "PE Builder's own read-me would be here.\r\n",
        "plugin/": "",
        "plugin/penetcfg/autorun-penetcfg.inf": inf("Autorun network configurator"),
        "plugin/penetcfg/autorun0penetcfg.cmd": "@echo stand-in\r\n",
        "plugin/bginfo/autorun_bginfo.cmd": "@echo stand-in\r\n",
    }
    for folder in REMOVED:
        files[f"plugin/{folder}/{folder.strip('!').lower()}.inf"] = inf(f"Stock {folder}")
    for path in MOVED:
        name = path.split("/")[1]
        files[f"plugin/{path}.inf"] = inf(f"1. Stock {name}", *menu(f"{name}_nu2menu.xml"))
        files[f"plugin/{path}_nu2menu.xml"] = f"<!-- menu of {name} -->\r\n"
    return files


SCRIPT = "\r\n".join([
    "[base]",
    "dirmake,%ProgramPath%\\Vesk",
    "regwrite,HKCU,0x0,Software\\Vesk Builder Sample",
    "regwrite,HKCU,0x1,Software\\Vesk Builder Sample,Tree,%ProgramPath%",
    "regwrite,HKCU,0x4,Software\\Vesk Builder Sample,Count,42",
    "[end]",
    "dirmake,%ProgramPath%\\never made: the section has ended",
]) + "\r\n"

ARCHIVES = {
    "pebuilder3110a.zip": pe_builder(),
    "livebase.zip": {
        "vesk.ico": "Stand-in for the icon of the shortcuts.\r\n",
        "desktop/wallpaper.txt": "A picture would be here.\r\n" * 40,
        "livebase.script": SCRIPT,
    },
    "hexview.zip": {
        "hexview.inf": inf("01 Hex Viewer", *menu("hexview_nu2menu.xml")),
        "hexview_nu2menu.xml": "<!-- menu -->\r\n",
        "files/hexview.txt": "0000  56 65 73 6B\r\n" * 400,
    },
    "netnotes.zip": {"netnotes.inf": inf("Network Notes"), "files/notes.txt": "ping\r\n" * 60},
    "diskcheck.zip": {"diskcheck.inf": inf("Disk Checker"), "files/check.txt": "ok\r\n" * 60},
    "regtool.cab": {
        "regtool.inf": inf("5 Registry Tool", *menu("regtool_nu2menu.xml")),
        "regtool_nu2menu.xml": "<!-- menu -->\r\n",
        "files\\regtool.txt": "HKEY_LOCAL_MACHINE\r\n" * 50,
    },
    "sphelper.zip": {
        "sphelper.inf": inf("Service Pack Helper", "[VeskBuilder]", "OSType=0,1", "SP=1,2", ""),
        "files/helper.txt": "For home and professional editions.\r\n" * 20,
    },
}

SERVED = "hexview.zip"
DAMAGED = "diskcheck.zip"  # arrives cut short, so that its checksum differs

LAYOUT = "\r\n".join(["[Version]", 'signature="$Windows NT$"', "[Strings]",
                      'productname = "Microsoft Windows XP Professional"',
                      'spcdtagfilei = "\\win51ip.sp2"', ""])
SOURCE = {"I386/LAYOUT.INF": LAYOUT, "I386/NTDLL.DLL": "stand-in\r\n",
          "I386/SETUPLDR.BIN": "stand-in\r\n"}


def write_zip(path, files):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in files.items():
            info = zipfile.ZipInfo(name, STAMP)
            info.compress_type = zipfile.ZIP_STORED if name.endswith("/") else zipfile.ZIP_DEFLATED
            info.external_attr = 0x10 if name.endswith("/") else 0x20
            archive.writestr(info, text.encode("cp1252"))


def write_cab(path, files):
    """A cabinet with its members stored in one folder and one data block."""
    names = [name.encode("cp1252") + b"\0" for name in files]
    data = [text.encode("cp1252") for text in files.values()]
    header_size, folder_size = 36, 8
    files_at = header_size + folder_size
    data_at = files_at + sum(16 + len(name) for name in names)
    block = struct.pack("<IHH", 0, len(b"".join(data)), len(b"".join(data))) + b"".join(data)
    date = (STAMP[0] - 1980) << 9 | STAMP[1] << 5 | STAMP[2]
    time = STAMP[3] << 11 | STAMP[4] << 5 | STAMP[5] // 2
    cabinet = struct.pack("<4sIIIIIBBHHHHH", b"MSCF", 0, data_at + len(block), 0, files_at, 0,
                          3, 1, 1, len(files), 0, 0, 0)
    cabinet += struct.pack("<IHH", data_at, 1, 0)
    offset = 0
    for name, content in zip(names, data):
        cabinet += struct.pack("<IIHHHH", len(content), offset, 0, date, time, 0x20) + name
        offset += len(content)
    path.write_bytes(cabinet + block)


def catalogue_crcs(text):
    """Archive name to checksum, as the catalogue says."""
    return dict(re.findall(r"^Zip\d+=(\S+) *\r\n(?:Cat\d+=.*\r\n)?(?:.*\r\n){3}CRC\d+=(\S+)", text,
                           re.MULTILINE))


def main(target):
    catalogue = (HERE / "veskbuilder.ini").read_bytes()
    crcs = catalogue_crcs(catalogue.decode("cp1252"))
    wrong = []
    for folder in ("program", "server", "source/I386"):
        (target / folder).mkdir(parents=True, exist_ok=True)
    for name, files in ARCHIVES.items():
        path = target / ("server" if name == SERVED else "program") / name
        (write_cab if path.suffix == ".cab" else write_zip)(path, files)
        crc = f"{zlib.crc32(path.read_bytes()):X}"
        if crcs.get(name) != crc:
            wrong.append(f"{name}: the catalogue says {crcs.get(name)}, the recipe gives {crc}")
        if name == DAMAGED:
            path.write_bytes(path.read_bytes()[:-30])
    (target / "program/veskbuilder.ini").write_bytes(catalogue)
    for name, text in SOURCE.items():
        (target / "source" / name).write_bytes(text.encode("cp1252"))
    if wrong:
        sys.exit("make_sample.py: checksums to mend in sample/veskbuilder.ini:\n" +
                 "\n".join(wrong))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_sample.py FOLDER")
    main(pathlib.Path(sys.argv[1]))
