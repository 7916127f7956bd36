#!/usr/bin/env python3
"""The sample, built by the delivered program: the whole log, and what stands in the tree."""

import re
import subprocess
import sys
import unittest

from program import TOP, WINE, SampleTest, contents_below, windows_path

START_MENU = r"C:\ProgramData\Microsoft\Windows\Start Menu\Programs\Vesk Builder"
EXPECTED_LOG = TOP / "tests/data/sample_build.log"


class Sample(SampleTest):
    def test_log_and_tree(self):
        # A start menu folder of an earlier build would be deleted with a log line of its own.
        subprocess.run([*WINE, "cmd", "/c", "rmdir", "/s", "/q", START_MENU], check=False,
                       capture_output=True, timeout=60)
        code, lines, errors = self.build("--source", windows_path(self.sample / "source"))
        self.assertRegex(errors, r"\Aveskbuild: diskcheck.zip: not installed, .*\n\Z")
        self.assertEqual(code, 1)  # one archive is damaged
        self.maxDiff = None
        self.assertEqual(lines, EXPECTED_LOG.read_text("cp1252").splitlines())
        saved = (self.program / "veskbuider.log").read_bytes().decode("cp1252")
        self.assertEqual([self.normalised(line) for line in saved.split("\r\n")], lines + [""])

        settings = (self.tree / "input.inf").read_text("cp1252").splitlines()
        self.assertEqual(settings[0], "[input]")
        self.assertEqual(len(settings), 23)
        self.assertEqual(settings[13], "isofile=" + windows_path(self.tree) + "\\veskbuilder.iso")
        self.assertEqual(settings[16], "source=" + windows_path(self.sample / "source") + "\\")
        helper = self.tree / "Plugin/500_security/sphelper/sphelper.inf"
        self.assertIn("Enable=1", helper.read_text("cp1252"))
        hexview = (self.tree / "Plugin/200_applications/hexview/hexview.inf").read_text("cp1252")
        self.assertIn("Name=200 Hex Viewer", hexview)
        self.assertIn(";nu2menu.xml, hexview_nu2menu.xml", hexview)
        names = contents_below(self.tree)
        self.assertIn("Plugin/100_system_tools/regtool/files/regtool.txt", names)
        self.assertIn("mymkisofs.exe", names)
        self.assertFalse([name for name in names if "diskcheck" in name or "netnotes" in name])
        self.assertTrue((self.tree / "Vesk").is_dir())
        self.assertEqual((self.tree / "pebuilder.exe").stat().st_mtime % 60, 2)

    def test_a_build_from_a_server_is_the_same(self):
        self.build()
        local = contents_below(self.tree)
        served = self.folder / "served"
        served.mkdir()
        for archive in [*self.program.glob("*.zip"), *self.program.glob("*.cab")]:
            if archive.name != "livebase.zip":  # of the base components only the first is fetched
                archive.rename(served / archive.name)
        catalogue = self.program / "veskbuilder.ini"
        text = re.sub(r"^(Zip(\d+)=(\S+) \r\n(?:.*\r\n)*?Url\2=).*", r"\1http://sample.invalid/\3 \r",
                      catalogue.read_bytes().decode("cp1252"), flags=re.MULTILINE)
        catalogue.write_bytes(text.encode("cp1252"))
        server = subprocess.Popen([sys.executable, TOP / "sample/serve.py", served],
                                  stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.wait)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.kill)
        code, lines, errors = self.build(
            "--yes", "--proxy", f"127.0.0.1:{int(server.stdout.readline())}")
        self.assertEqual(code, 1)
        self.assertRegex(errors, r"\Aveskbuild: diskcheck.zip: not downloaded, .*\n\Z")
        self.assertIn("Warning: diskcheck.zip CRC failed. !!!", lines)
        self.assertEqual(contents_below(self.tree), local)

    def test_without_a_source_the_declaring_plugin_is_disabled(self):
        code, lines, errors = self.build("--enable", "network notes", "--disable", "Disk Checker")
        self.assertEqual((code, errors), (0, ""))
        self.assertIn("Source path: Invalid", lines)
        helper = self.tree / "Plugin/500_security/sphelper/sphelper.inf"
        self.assertIn("Enable=0", helper.read_text("cp1252"))
        self.assertTrue((self.tree / "Plugin/300_drivers_and_network/netnotes").is_dir())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
