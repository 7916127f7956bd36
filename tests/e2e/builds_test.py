#!/usr/bin/env python3
"""Whole builds, each compared in everything that it leaves behind with a manifest that says what is
to be. The manifests follow from the recipes below; they are not what the program once made."""

import hashlib
import os
import shutil
import sys
import time
import unittest
from zipfile import ZIP_LZMA, ZIP_STORED

from fixtures import TOP, Member, compare, windows_path
from manifest import forget_registry, registry_lines, shortcut_lines, tree_lines
from program import PREFIX, START_MENU, ProgramTest, contents_below

DRIVE = PREFIX / "drive_c"
LINKS = [START_MENU / "Vesk Builder.lnk", START_MENU / "ReadMe.lnk"]
KEY = r"HKCU\Software\Vesk Builder Test"
SAMPLE_KEY = r"HKCU\Software\Vesk Builder Sample"
READ_ME_TIME = 1146711722  # 2006-05-04 03:02:02
SUMMER, WINTER = (2006, 7, 4, 12, 0, 2), (2006, 1, 4, 12, 0, 2)


def inf(name, *more):
    return "\r\n".join(["[Version]", 'Signature="$Windows NT$"', "[PEBuilder]", f"Name={name}",
                        "Enable=1", *more, ""])


def menu(file):
    return ("[Append]", f"nu2menu.xml, {file}")


def wants(systems, packs):
    return ("[VeskBuilder]", f"OSType={systems}", f"SP={packs}")


def script(name):
    """They differ in what they write, and in which headings end a section."""
    return (TOP / f"tests/data/builds/{name}.script").read_text().replace("\n", "\r\n")


class Builds(ProgramTest):
    maxDiff = None

    def setUp(self):
        super().setUp()
        self.windows_tree = windows_path(self.tree)
        os.utime(self.program / "readme.txt", (READ_ME_TIME, READ_ME_TIME))  # copied with its time
        # Shared by all builds of this system, and named in the log when it is there.
        shutil.rmtree(START_MENU, ignore_errors=True)
        for key in (KEY, SAMPLE_KEY):
            forget_registry(key)
            self.addCleanup(forget_registry, key)

    def build_and_compare(self, name, *arguments, zone="UTC", then=()):
        """Builds, and compares exit code, log, error output and all that it left with a manifest.
        @param then a second call, of which the output is compared as well"""
        began = time.time()
        code, lines, errors = self.run_program(*arguments, zone=zone)
        lines = [self.normalised(line) for line in lines]
        saved = (self.program / "veskbuider.log").read_bytes().decode("cp1252")
        self.assertEqual([self.normalised(line) for line in saved.split("\r\n")], lines + [""])
        desktop, = (path for path in DRIVE.glob("users/*/Desktop") if path.parent.name != "Public")
        problems = [line.removeprefix("veskbuild: ") for line in errors.splitlines()]
        found = [f"== exit code {code}", "== log", *lines, "== problems", *problems,
                 "== shortcuts", *shortcut_lines([*LINKS, desktop / "Vesk Builder.lnk"]),
                 "== registry", *registry_lines(KEY),
                 "== tree", *tree_lines(self.tree, self.windows_tree, began)]
        if then:
            found += ["== then", *self.run_program(*then)[1]]
        found = [self.normalised(line) for line in found]
        compare(self, f"builds/{name}.txt", found)

    def install_into(self, folder, *parts):
        """Lets the tree be one on the system's own drive. Returns the name for the catalogue."""
        name = "vesk-" + self.folder.name
        self.tree = DRIVE.joinpath(*parts, name)
        self.windows_tree = folder + name
        self.addCleanup(shutil.rmtree, self.tree, ignore_errors=True)
        return name

    def normalised(self, line):
        return super().normalised(line.replace(self.windows_tree, "{TREE}"))

    def write_source(self, product, tag):
        folder = self.folder / "source/I386"
        folder.mkdir(parents=True)
        (folder / "LAYOUT.INF").write_text(
            f'[Strings]\nproductname = "{product}"\nspcdtagfilei = "{tag}"\n')
        for name in ("NTDLL.DLL", "SETUPLDR.BIN"):
            (folder / name).write_text("x")
        return windows_path(folder.parent)

    def test_everything_on(self):
        """With categories, a Windows source, scripts, and archives that carry all they can, in a
        zone with summer time."""
        name = self.install_into("C:\\")
        self.archive("data.zip", Member("bad.dat", "stored and damaged", kind=ZIP_STORED),
                     Member("good.dat", "stored", kind=ZIP_STORED))
        data = (self.program / "data.zip").read_bytes().replace(b"stored and", b"stored AND")
        base = [
            ("PE Builder", 1, 1, *self.full_pe_builder()),
            ("Cabinet", 1, 0, *self.archive(
                "cabinet.cab", Member("a.script", script("first")), Member("b.script", script("second")),
                Member("vesk.ico", "icon", SUMMER, 0x01), Member("sub\\w.dat", "w", WINTER, 0x26))),
            ("Unticked", 0, 0, *self.archive("unticked.zip", Member("unticked.dat", "u"))),
            ("Scripted", 1, 0, *self.archive("scripted.zip", Member("deep/er/c.script", script("last")))),
            ("Absent", 1, 0, "absent.zip", "1"),
            ("Other sum", 1, 0, self.archive("sum.zip", Member("sum.dat", "s"))[0], "ABCDEF")]
        plugins = [
            ("100", "Network Tools", 1, 0, *self.archive("one.zip", *STAMPED, Member("One.inf", inf(
                "01 - Network Tools", *menu("one_nu2menu.xml"), *wants("0,1", "1,2"))))),
            ("7", "Cabinet", 1, 1, *self.archive(
                "two.cab", Member("two.inf", inf("Two", *wants("1", "1")), WINTER, 0x20),
                Member("r.dat", "rr", SUMMER, 0x01), Member("sub\\h.dat", "hhh", WINTER, 0x02))),
            ("100", "Locked", 0, 1, *self.archive("locked.zip", Member("l.inf", inf("L")))),
            ("100", "Unticked", 0, 0, *self.archive("off.zip", Member("o.inf", inf("O")))),
            ("100", "Other sum", 1, 0, self.archive("sum2.zip", Member("s.inf", inf("S")))[0], "1"),
            ("100", "Absent", 1, 0, "gone.zip", "1"),
            ("999", "Nowhere", 1, 0, *self.archive("seven.zip", Member(
                "seven.inf", inf("Tool999 Seven", *wants("1, 0", "1"))))),
            ("500", "Names", 1, 0, *self.archive("names.zip", *REFUSED, Member(
                "names.inf", inf("Names", ";[Append]", "nu2menu.xml, x.xml", *wants("0", "2,1"))))),
            ("200", "Sums", 1, 0, *self.raw("data.zip", data))]
        self.write_entries(base, plugins, [("100", "100_system_tools"), ("7", "7_extra_TOOLS"),
                                           ("200", "200_a"), ("500", "500_b")], (name, 0))
        source = self.write_source("Microsoft Windows XP Home Edition", "\\win51ic.SP1")
        self.build_and_compare("everything_on", "--source", source, zone="Europe/Berlin")

    def full_pe_builder(self):
        """PE Builder's archive, with some of the stock plug-ins that are removed or moved."""
        return self.archive(
            "pebuilder3110a.zip", Member("pebuilder.exe", "program"), Member("mkisofs.exe", "writer"),
            Member("input.inf", "[input]\r\nburncd=1\r\nmine=kept\r\n[other]\r\nsource=kept\r\n"),
            Member("plugin/!custom/x.inf", inf("x")), Member("plugin/zz5/sub/x.dat", "x"),
            Member("plugin/chkdsk2/kept.inf", inf("kept")),
            Member("plugin/penetcfg/penetcfg.inf", inf("PENetCfg", "[append]", "NU2MENU.XML, x.xml")),
            Member("plugin/penetcfg/autorun-penetcfg.inf", inf("x")),
            Member("plugin/penetcfg/autorun0penetcfg.cmd", "x"),
            Member("plugin/bginfo/autorun_bginfo.cmd", "x"), Member("plugin/bginfo/kept.cmd", "x"),
            Member("plugin/aspi/aspi.inf", inf("30. ASPI Layer", ";[Append]", "nu2menu.xml, x.xml")),
            Member("plugin/nero burning rom/penero.inf", inf("2: Nero", *menu("nero.xml"))),
            Member("plugin/stinger/stinger.inf", inf("5001 McAfee500 Stinger", "[Append]", "x, y")))

    def test_everything_off(self):
        """Without categories, source and read-me, over the tree of an earlier build, among the
        installed programs."""
        name = self.install_into("C:\\Program Files\\", "Program Files")
        (self.program / "readme.txt").unlink()
        (self.tree / "Plugin/old").mkdir(parents=True)
        for old in ("pebuilder.exe", "input.inf", "old.dat", "Plugin/old/old.inf"):
            (self.tree / old).write_text("of an earlier build")
        START_MENU.mkdir(parents=True)
        (START_MENU / "other.lnk").write_text("goes")
        base = [
            ("PE Builder", 1, 1, *self.archive(
                "pebuilder3110a.zip", Member("PEBUILDER.EXE", "program"), Member(
                    "plugin/stinger/stinger.inf", inf("5. Stinger", *menu("stinger.xml"))))),
            ("Other kind", 1, 0, *self.archive("other.rar", Member("other.dat", "x")))]
        plugins = [
            ("100", "One", 1, 0, *self.archive(
                "one.zip", Member("one.inf", inf("01 One", *menu("one.xml"), *wants("0,1", "1"))),
                Member("empty.inf", ""),
                Member("sub/ONE.INF", inf("Two", "[VeskBuilder]", "OSType=1")))),
            ("100", "Off", 0, 1, *self.archive("off.zip", Member("off.inf", inf("Off")))),
            ("500", "Named on", 0, 0, *self.archive("on.cab", Member("on.inf", inf("On")))),
            ("500", "Named off", 1, 0, *self.archive("named.zip", Member("named.inf", inf("Off"))))]
        self.write_entries(base, plugins, [("100", "100_tools"), ("500", "500_security")], (name, 1),
                           show_categories=0)
        self.build_and_compare("everything_off", "--yes", "--enable", "named ON", "--disable",
                               "Named off")

    def test_sample(self):
        """It has every stock plug-in. What becomes of one's content is in the other builds."""
        self.add_sample()
        code, _, errors = self.build("--source", windows_path(self.sample / "source"))
        compare(self, "builds/sample.txt", [f"== exit code {code}", *errors.splitlines(), "== tree",
                                            *sorted(contents_below(self.tree))])

    def test_what_is_not_done(self):
        """Archives that cannot be extracted whole, texts in UTF-16, values that are too long, digests that
        differ: each is told once, by the build and, where it is in an archive, by the check."""
        good, script_text = inf("Good"), "[base]\r\ndirmake,%ProgramPath%\\made\r\n"
        marked = ("\ufeff" + inf("Marked", *menu("t.xml"))).encode("utf-16-le")
        plain = inf("Plain", *wants("0", "1")).encode("utf-16-le")
        base = [("PE Builder", 1, 1, *self.archive(
            "pebuilder3110a.zip", Member("pebuilder.exe", "x"), Member("Plugin/bootfix", "a file"),
            Member("a.script", script_text.encode("utf-16-le")), Member("Plugin/mstsc/mstsc.inf", plain))),
                ("More", 1, 1, *self.archive("more.zip", Member("b.script", script_text)))]
        cut = self.archive("cut.zip", Member("tool.inf", good), Member("big.bin", "0123" * 999))[0]
        archives = [
            self.raw(cut, (self.program / cut).read_bytes()[:-30]),
            self.archive("method.zip", Member("tool.inf", good), Member("x", "x" * 99, kind=ZIP_LZMA)),
            self.raw("text.zip", b"this is no archive"), self.archive("void.zip"),
            self.raw("junk.cab", b"MSCF" + bytes(range(60))), self.archive("empty.cab"),
            self.archive("twice.zip", Member("tool.inf", good), Member("a.txt", "1"), Member("A.TXT", "2")),
            self.archive("utf16.zip", Member("marked.inf", marked), Member("plain.inf", plain),
                         Member("big.inf", ("\ufeff" + good).encode("utf-16-be"))),
            self.archive("long.zip", Member("a.inf", inf("n" * 255)), Member(
                "b.inf", inf("n" * 254, *wants("1" + ",2" * 150, "1," * 127)))),
            self.archive("good.zip", Member("good.inf", good, kind=ZIP_STORED)),
            self.archive("forged.zip", Member("forged.inf", good, kind=ZIP_STORED))]
        digest = hashlib.sha256((self.program / "good.zip").read_bytes()).hexdigest()
        (self.program / "veskbuilder.sha256").write_text(
            f"{digest.upper()} *Good.zip\n{digest}  forged.zip\n{digest} good.zip\n")
        self.write_entries(base, [("100", name, 1, 0, name, crc) for name, crc in archives])
        self.build_and_compare("what_is_not_done", *self.to_tree, then=["--check"])


STAMPED = [
    Member("times/summer.dat", "s", SUMMER), Member("times/winter.dat", "w", WINTER),
    Member("times/exact.dat", "x", SUMMER, unix_time=1138000001),
    Member("kept/", "", WINTER, 0x12), Member("kept/system.dat", "sys", attributes=0x26),
    Member("kept/readonly.dat", "ro", attributes=0x21), Member("kept/hidden.dat", "h", attributes=0x22)]
REFUSED = [Member(name, "x") for name in (
    "CON", "sub/aux.h", "lpt1.txt", "control\x01.dat", "dot.", "blank ", "../up.dat", "C:/drive.dat",
    "a:stream", "question?.dat", "/root.dat")] + [Member("./plain//good.dat", "good")]


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
