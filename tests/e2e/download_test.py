#!/usr/bin/env python3
"""veskbuild downloads what is missing: through a proxy, with progress on a terminal, until it is
told to stop."""

import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import threading
import time
import unittest

from program import WINE, ProgramTest, windows_path, zip_bytes

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "net"))
from peers import ScriptedServer, answer  # noqa: E402

HALF_DRAWN = re.compile(rb"\[#########-----------\]  49%  \d+ B of \d+ B  [\d.]+ k?B/s  "
                        rb"\d+:\d\d left  one.zip")
SILENCE_DRAWN = re.compile(rb"49%  \d+ B of \d+ B  no data for \d+ s  one.zip")


class Download(ProgramTest):
    def setUp(self):
        super().setUp()
        (self.program / "readme.txt").write_text("Read me.")
        server = self.folder / "server"
        server.mkdir()
        base = zip_bytes(server / "pebuilder3110a.zip", {"pebuilder.exe": "x"})
        one = zip_bytes(server / "one.zip", {"one.inf": "[PEBuilder]\r\nName=One\r\n"})
        (server / "damaged.zip").write_bytes(b"no archive")
        host = "http://archives.invalid/"
        self.one = one
        plugins = [("One", "one.zip", f"{host}none, {host}gone ,{host}one.zip", one),
                   ("Damaged", "damaged.zip", host + "damaged.zip", one),
                   ("None", "none.zip", host + "none", one)]
        self.write_catalogue(
            [("PE Builder", "pebuilder3110a.zip", "", 1, 1, host + "pebuilder3110a.zip", base)],
            [(name, archive, "100", 1, 0, url, crc) for name, archive, url, crc in plugins])
        self.slow = ""  # a file of which half comes at once and the rest never
        self.half_sent = threading.Event()

        def script(connection, url):
            file = server / url.rsplit("/", 1)[1]
            if not file.exists():
                return connection.sendall(answer(b"", status="HTTP/1.1 404 Not Found"))
            content = file.read_bytes()
            if file.name != self.slow:
                return connection.sendall(answer(content))
            connection.sendall(answer(content[:len(content) // 2], length=len(content)))
            self.half_sent.set()
            connection.recv(1)

        self.server = ScriptedServer(script)
        self.addCleanup(self.server.stop)
        self.proxy = ("--proxy", f"127.0.0.1:{self.server.port}")

    def test_missing_archives_come_through_the_proxy(self):
        code, lines, errors = self.build(*self.proxy)
        self.assertEqual(code, 1)
        by = f"archives.invalid through proxy {self.proxy[1].replace(':', ' port ')}"
        self.assertEqual(errors.splitlines(), [
            f"veskbuild: damaged.zip: not downloaded, {by}: CRC differs, expected {self.one}, "
            'found 1E98F274, a text came instead: "no archive"',
            f"veskbuild: none.zip: not downloaded, {by}: HTTP/1.1 404 Not Found"])
        self.assertTrue((self.tree / "pebuilder.exe").exists())
        self.assertTrue((self.tree / "Plugin/100_tools/one/one.inf").exists())
        self.assertEqual(
            [line for line in lines if line.startswith(("Downloading", "Warning"))],
            ["Downloading: pebuilder3110a.zip", "Downloading: one.zip", "Downloading: damaged.zip",
             "Warning: damaged.zip CRC failed. !!!", "Downloading: none.zip",
             "Warning: none.zip could not be downloaded. !!!"])
        self.assertEqual({path.name for path in self.program.glob("*.zip*")},
                         {"pebuilder3110a.zip", "one.zip"})
        requested = [request.split()[1].rsplit(b"/", 1)[1] for request in self.server.requests]
        self.assertEqual(requested, [b"pebuilder3110a.zip", b"none", b"gone", b"one.zip",
                                     b"damaged.zip", b"none"])

    def test_a_download_with_another_digest_does_not_stay(self):
        other = "0" * 64
        (self.program / "veskbuilder.sha256").write_text(f"{other}  one.zip\n{other}  other.zip\n")
        code, lines, errors = self.build(*self.proxy)
        self.assertEqual(code, 1)
        self.assertRegex(errors, r"one\.zip: not downloaded, .*; archives\.invalid through proxy "
                                 rf"[\d.]+ port \d+: SHA-256 differs, expected {other}, found [0-9a-f]+\n")
        self.assertIn("Warning: one.zip CRC failed. !!!", lines)
        self.assertEqual({path.name for path in self.program.glob("*.zip*")}, {"pebuilder3110a.zip"})

    def test_a_server_that_falls_silent_is_given_up(self):
        self.slow = "one.zip"
        code, lines, errors = self.build(*self.proxy, "--timeout", "1")
        self.assertEqual(code, 1)
        self.assertIn("Warning: one.zip could not be downloaded. !!!", lines)
        self.assertRegex(errors, r"one\.zip: not downloaded, .*archives\.invalid through proxy "
                                 r"[\d.]+ port \d+: no data for 1 s, \d+ of \d+ bytes came\n")
        self.assertFalse((self.program / "one.zip").exists())

    def test_what_a_killed_run_leaves_is_no_archive(self):
        self.slow = "one.zip"
        process = subprocess.Popen(
            [*WINE, str(self.program / "veskbuild.exe"), "--install", windows_path(self.tree),
             *self.proxy], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        part = self.program / "one.zip.vesk-part"
        try:
            self.assertTrue(self.half_sent.wait(30))
            deadline = time.monotonic() + 30
            while (not part.exists() or part.stat().st_size == 0) and time.monotonic() < deadline:
                time.sleep(0.02)
        finally:
            process.kill()
            process.wait()
        self.assertGreater(part.stat().st_size, 0)
        self.assertFalse((self.program / "one.zip").exists())
        self.slow = ""
        self.build("--yes", *self.proxy)
        self.assertTrue((self.tree / "Plugin/100_tools/one/one.inf").exists())
        self.assertFalse(part.exists())

    def stop_on_a_terminal(self, drawn):
        """Runs a build whose error output is a terminal and stops it while it waits for the other
        half of an archive and has drawn such a line. Returns exit code, log, what the terminal
        showed."""
        try:
            terminal, program_side = pty.openpty()
        except OSError as error:
            self.skipTest(f"no pseudo-terminal to be had: {error}")
        self.addCleanup(os.close, terminal)
        process = subprocess.Popen(
            [*WINE, str(self.program / "veskbuild.exe"), "--install", windows_path(self.tree),
             *self.proxy], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=program_side,
            start_new_session=True)
        self.addCleanup(process.stdout.close)
        os.close(program_side)
        shown = []

        def read():
            try:
                while piece := os.read(terminal, 65536):
                    shown.append(piece)
            except OSError:
                pass  # the other side is closed

        reader = threading.Thread(target=read, daemon=True)
        reader.start()
        try:
            self.assertTrue(self.half_sent.wait(30))
            deadline = time.monotonic() + 30
            while not drawn.search(b"".join(shown)) and time.monotonic() < deadline:
                time.sleep(0.02)
            process.send_signal(signal.SIGINT)
            log = process.communicate(timeout=30)[0].decode("cp1252").splitlines()
        finally:
            process.kill()
        reader.join(10)
        lines = [self.normalised(line) for line in log]
        return process.returncode, lines, b"".join(shown)

    def test_progress_is_drawn_and_ctrl_c_ends_download_and_run(self):
        self.slow = "one.zip"
        code, lines, shown = self.stop_on_a_terminal(SILENCE_DRAWN)
        self.assertEqual(code, 3)
        self.assertEqual(lines[-3:], ["Warning: download cancelled by user. !!!",
                                      "Aborted... [{DATE}]", "click 'Finish' to exit"])
        self.assertEqual(list(self.program.glob("one.zip*")), [])
        self.assertEqual(len(self.server.requests), 4)  # nothing after the one cancelled
        self.assertRegex(shown, HALF_DRAWN)
        self.assertRegex(shown, SILENCE_DRAWN)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
