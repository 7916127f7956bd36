"""Runs the download tool against real and scripted servers and compares events and files.
Arguments: the program that runs Windows programs, the download tool."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from peers import Nginx, ScriptedServer, Tinyproxy, answer  # noqa: E402

WINE, TOOL = sys.argv[1:3]
WORK = pathlib.Path(tempfile.mkdtemp(prefix="vesk-net-"))
ALL_BYTES = bytes(range(256)) * 40
CLOSED = "Open objects 0 sockets 0 lookups 0 window 0"


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


def download(*arguments, target=None):
    """Runs the tool. Returns its lines; what is left open is checked and cut off."""
    target = target or WORK / "target.bin"
    run = subprocess.run([WINE, TOOL, *map(str, arguments), windows(target)], timeout=100,
                         stdin=subprocess.DEVNULL, capture_output=True, check=True)
    lines = run.stdout.decode("latin-1").replace("\r", "").splitlines()
    for line in lines:
        if line.startswith("Open "):
            assert line.startswith(CLOSED), line
    handles = [line.split()[-1] for line in lines if line.startswith("Open ")]
    # The first download loads what later ones share; from then on nothing may be added.
    assert len(set(handles[1:])) <= 1, handles
    return [line for line in lines if not line.startswith("Open ")]


class ScriptedAnswers(unittest.TestCase):
    def setUp(self):
        self.target = WORK / "target.bin"
        self.target.unlink(missing_ok=True)

    def serve(self, script):
        server = ScriptedServer(script)
        self.addCleanup(server.stop)
        return server

    def through(self, server, *arguments, url="http://host/file"):
        return download("--access", 2, "--proxy", f"127.0.0.1:{server.port}", *arguments, url,
                        target=self.target)

    def expect(self, script, lines, content, *arguments):
        server = self.serve(script)
        self.assertEqual(self.through(server, *arguments), lines)
        if content is not None:
            self.assertEqual(self.target.read_bytes(), content)
        return server

    def test_every_answer_yields_its_events_and_its_file(self):
        ok = "HTTP/1.1 200 OK"
        head = answer(ALL_BYTES)[:-len(ALL_BYTES)]
        size = len(ALL_BYTES)
        started = f"Starting {size} {len(head)} {ok}"
        moved = answer(b"here", "Location:", status="HTTP/1.1 302 Found")

        def byte_by_byte(connection, _):
            for byte in head + ALL_BYTES[:50]:
                connection.sendall(bytes([byte]))
                time.sleep(0.001)
            connection.sendall(ALL_BYTES[50:])

        big_head = answer(b"x", "Filler: " + "y" * 1_000_000)[:-1]
        for name, script, lines, content in (
                ("byte by byte", byte_by_byte, [started], ALL_BYTES),
                ("one piece", lambda c, _: c.sendall(head + ALL_BYTES), [started], ALL_BYTES),
                ("1 MB header", lambda c, _: c.sendall(big_head + b"x"),
                 [f"Starting 1 {len(big_head)} {ok}"], b"x"),
                ("empty Location", lambda c, _: c.sendall(moved),
                 [f"Starting 4 {len(moved) - 4} HTTP/1.1 302 Found"], b"here"),
                ("no header end", lambda c, _: c.sendall(b"just\r\ntext\0"), ["Starting 11 0 "],
                 b"just\r\ntext\0"),
                ("nothing", lambda c, _: None, ["Starting 0 0 "], b""),
                ("server error", lambda c, _: c.sendall(answer(b"?", status="HTTP/1.1 500 No")),
                 ["Starting 1 38 HTTP/1.1 500 No"], b"?")):
            with self.subTest(name):
                self.expect(script, [*lines, "Completed", f"Bytes {len(content)}"], content)

    def test_redirects(self):
        def chain(connection, path):
            step = int(path[1:])
            where = f"LOCATION: http://host/{step + 1}"
            page = answer(b"gone", where, status="HTTP/1.1 302 Found")
            connection.sendall(page if step < 5 else answer(b"end"))

        server = self.serve(chain)
        head = len(answer(b"end")) - 3
        self.assertEqual(self.through(server, "--times", 3, url="http://host/1")[:3],
                         [f"Starting 3 {head} HTTP/1.1 200 OK", "Completed", "Bytes 3"])
        self.assertEqual([r.split()[1] for r in server.requests[:5]],
                         [b"/1", b"/2", b"/3", b"/4", b"/5"])
        page = answer(b"gone", "Location: http://host/1", status="HTTP/1.1 302 Found")
        self.expect(lambda c, _: c.sendall(page),
                    [f"Starting 4 {len(page) - 4} HTTP/1.1 302 Found", "Completed", "Bytes 4"],
                    b"gone", "--no-redirect")
        for where in ("http://h/\nX: y", "http://h/\rX: y", "http://h/a\tb", "http://h/\x7f\0"):
            split = answer(b"gone", "Location: " + where, status="HTTP/1.1 302 Found")
            server = self.expect(
                lambda c, _, text=split: c.sendall(text),
                ["Error 400 [The server redirects to an address with a control character in it]",
                 "Bytes 0"], b"")
            self.assertEqual(len(server.requests), 1)
        server = self.expect(lambda c, _: c.sendall(page), ["Cancelled", "Bytes 0"] * 3, None,
                             "--cancel-after", 400, "--times", 3)
        self.assertGreater(len(server.requests), 10)

    def test_error_pages_and_endless_headers_end_in_an_error(self):
        def endless(connection, _):
            while True:
                connection.sendall(b"X: " + b"y" * 60_000 + b"\r\n")

        self.expect(endless, ["Error 431 [The header of the server's answer does not end]",
                              "Bytes 0"] * 3, b"", "--times", 3)
        most = 16 * 1024 * 1024
        start = b"HTTP/1.1 200 OK\r\nContent-Length: 1\r\nX: "
        for size in (most, most + 1):
            header = start + b"y" * (size - len(start) - 4) + b"\r\n\r\n"
            self.expect(lambda c, _, text=header + b"b": c.sendall(text),
                        [f"Starting 1 {most} HTTP/1.1 200 OK", "Completed", "Bytes 1"]
                        if size == most else
                        ["Error 431 [The header of the server's answer does not end]", "Bytes 0"],
                        b"b" if size == most else b"")
        page = answer(b"page", status="HTTP/1.1 403 Web site blocked")
        self.expect(lambda c, _: c.sendall(page), ["Error 403 [Forbidden ]", "Bytes 0"], b"")

    def test_silence_a_bad_port_and_unknown_hosts(self):
        def silent(connection, _):
            connection.recv(1)

        self.expect(silent, ["Cancelled", "Bytes 0"] * 3, b"", "--cancel-after", 300, "--times", 3)
        self.assertEqual(download("--times", 3, "http://no-such-host.invalid/x"),
                         ["Error 11001 [Host not found.]", "Bytes 0"] * 3)
        self.assertEqual(download("--access", 1, "--proxy", "h:70000", "http://h/")[0][:11],
                         "Error 40014")

    def test_handlers_may_cancel_restart_and_destroy_in_every_event(self):
        page = answer(b"b" * 3_000_000)
        bad = answer(b"", status="HTTP/1.1 404 Not Found")
        for event in ("starting", "data", "completed", "error"):
            server = self.serve(lambda c, _: c.sendall(bad if event == "error" else page))
            for action in ("cancel", "restart", "destroy"):
                with self.subTest(f"{action} in {event}"):
                    lines = self.through(server, "--act", f"{event}:{action}")
                    done = lines.index(f"{action} in {event}")
                    if action != "restart":
                        self.assertEqual(len(lines), done + 2, lines)
                    elif event == "error":
                        self.assertEqual(lines[done + 1], lines[done - 1])
                    else:
                        self.assertEqual(lines[-2:], ["Completed", "Bytes 3000000"])
                        self.assertEqual(self.target.stat().st_size, 3_000_000)

    def test_a_file_in_the_way_is_replaced_and_one_in_other_letter_case_appended_to(self):
        server = self.serve(lambda c, _: c.sendall(answer(b"new")))
        for name, mode, content in (("target.bin", 0o444, b"new"), ("Target.bin", 0o644, b"oldnew")):
            self.target.unlink(missing_ok=True)
            self.addCleanup((WORK / name).unlink, missing_ok=True)
            (WORK / name).write_bytes(b"old")
            (WORK / name).chmod(mode)
            self.through(server)
            self.assertEqual((WORK / name).read_bytes(), content)


class RealServers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.nginx = Nginx(WORK / "nginx")
        cls.addClassCleanup(cls.nginx.stop)
        cls.tinyproxy = Tinyproxy(WORK / "tinyproxy")
        cls.addClassCleanup(cls.tinyproxy.stop)
        cls.small = os.urandom(300_000)
        (cls.nginx.root / "small.bin").write_bytes(cls.small)

    def test_nginx_and_tinyproxy_serve_the_same_bytes(self):
        nginx = f"http://127.0.0.1:{self.nginx.port}"
        routes = [(nginx, "--access", 2, "--proxy", f"127.0.0.1:{self.nginx.port}"),
                  (nginx, "--access", 1, "--proxy", f"127.0.0.1:{self.tinyproxy.port}")]
        if self.nginx.direct:
            routes.append(("http://" + self.nginx.direct_host,))
        for url, *arguments in routes:
            with self.subTest(arguments=arguments):
                for path in ("/small.bin", *(["/moved"] if not arguments else [])):
                    lines = download(*arguments, "--times", 2, url + path)
                    self.assertTrue(lines[0].endswith("HTTP/1.1 200 OK"), lines)
                    self.assertEqual(lines[1:3], ["Completed", "Bytes 300000"])
                    self.assertEqual((WORK / "target.bin").read_bytes(), self.small)
                for path, line in (("/none", "Error 404 [File not found]"),
                                   ("/secret", "Error 401 [Unauthorized]")):
                    self.assertEqual(download(*arguments, url + path)[0], line)

    def test_memory_stays_flat(self):
        with open(self.nginx.root / "huge.bin", "wb") as huge:
            huge.truncate(400_000_000)
        with subprocess.Popen(
                [WINE, TOOL, "--access", "2", "--proxy", f"127.0.0.1:{self.nginx.port}",
                 "http://h/huge.bin", windows(WORK / "target.bin")],
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE) as tool:
            status = pathlib.Path(f"/proc/{tool.pid}/status")
            most = 0
            while tool.poll() is None:
                most = max(most, *map(int, re.findall(r"VmRSS:\s+(\d+)", status.read_text())), 0)
                time.sleep(0.01)
            self.assertIn(b"Bytes 400000000", tool.stdout.read())
        self.assertGreater(most, 0)
        self.assertLess(most, 100_000, "kilobytes in memory")
        (WORK / "target.bin").unlink()


if __name__ == "__main__":
    try:
        unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
    finally:
        subprocess.run(["rm", "-rf", str(WORK)], check=False)
