#!/usr/bin/env python3
"""veskbuild downloads what is missing: through a proxy, with progress on a terminal, until it is
told to stop."""

import re
import signal
import subprocess
import unittest

from fixtures import Member, run_on_a_terminal, write_archive, write_catalogue
from net.peers import ScriptedServer, answer
from program import SaidTest

HALF_DRAWN = re.compile(rb"\[#########-----------\]  49%  \d+ B of \d+ B  [\d.]+ k?B")
SILENCE_DRAWN = re.compile(rb"49%  \d+ B of \d+ B  no data")


class Download(SaidTest):
    def setUp(self):
        super().setUp()
        served = self.folder / "server"
        served.mkdir()
        base = write_archive(served / "pebuilder3110a.zip", Member("pebuilder.exe", "x"))
        one = write_archive(served / "one.zip", Member("one.inf", "[PEBuilder]\r\nName=One\r\n"))
        (served / "damaged.zip").write_bytes(b"no archive")
        host = "http://archives.invalid/"
        plugins = [("One", "one.zip", f"{host}none, {host}gone ,{host}one.zip", one),
                   ("Damaged", "damaged.zip", host + "damaged.zip", one),
                   ("None", "none.zip", host + "none", one)]
        write_catalogue(
            self.program, [("PE Builder", "pebuilder3110a.zip", "", 1, 1, host + "pebuilder3110a.zip", base)],
            [(name, archive, "100", 1, 0, url, crc) for name, archive, url, crc in plugins])
        self.slow = ""  # a file of which half comes at once and the rest never

        def script(connection, url):
            file = served / url.rsplit("/", 1)[1]
            if not file.exists():
                return connection.sendall(answer(b"", status="HTTP/1.1 404 Not Found"))
            content = file.read_bytes()
            if file.name != self.slow:
                return connection.sendall(answer(content))
            connection.sendall(answer(content[:len(content) // 2], length=len(content)))
            connection.recv(1)

        self.server = ScriptedServer(script)
        self.addCleanup(self.server.stop)
        self.proxy = ("--proxy", f"127.0.0.1:{self.server.port}")

    def normalised(self, line):
        return re.sub(r"127\.0\.0\.1( port |:)\d+", "{PROXY}", super().normalised(line))

    def archives(self):
        return {path.name for path in self.program.glob("*.zip*")}

    def test_missing_archives_come_through_the_proxy(self):
        self.build(*self.proxy)
        self.assertTrue((self.tree / "Plugin/100_tools/one/one.inf").exists())
        self.assertEqual(self.archives(), {"pebuilder3110a.zip", "one.zip"})
        requested = [request.split()[1].rsplit(b"/", 1)[1] for request in self.server.requests]
        self.assertEqual(b" ".join(requested), b"pebuilder3110a.zip none gone one.zip damaged.zip none")

    def test_a_download_with_another_digest_does_not_stay(self):
        (self.program / "veskbuilder.sha256").write_text(f"{'0' * 64}  one.zip\n{'0' * 64}  other.zip\n")
        self.build(*self.proxy)
        self.assertEqual(self.archives(), {"pebuilder3110a.zip"})

    def test_a_server_that_falls_silent_is_given_up(self):
        self.slow = "one.zip"
        self.build(*self.proxy, "--timeout", "3")
        self.assertEqual(self.archives() & {"one.zip"}, set())

    def test_progress_is_drawn_and_ctrl_c_ends_download_and_run(self):
        self.slow, stopped = "one.zip", []

        def stop(process, shown, _):
            if not stopped and SILENCE_DRAWN.search(shown):
                process.send_signal(signal.SIGINT)
                stopped.append(True)

        with open(self.folder / "log", "w+", encoding="cp1252") as log:
            code, shown = run_on_a_terminal(self, self.command(*self.to_tree, *self.proxy), stop,
                                            stdin=subprocess.DEVNULL, stdout=log)
            log.seek(0)
            lines = log.read().splitlines()
            self.said = f"exit code {code}\n{shown}\n--- log\n" + "\n".join(lines)
            self.note(code, lines, "", "(stopped)")
        self.assertEqual(self.archives(), {"pebuilder3110a.zip"})
        self.assertEqual(len(self.server.requests), 4)  # nothing after the one cancelled
        self.assertRegex(shown, HALF_DRAWN)
        drawn = re.split(rb"[\r\n]+", re.sub(rb"\x1b\[[\d;?]*[A-Za-z]", b"", shown))
        # The last column would begin a new line.
        self.assertEqual(max(len(line) for line in drawn if b"49%" in line), 59, drawn)


if __name__ == "__main__":
    unittest.main(argv=["download_test.py"])
