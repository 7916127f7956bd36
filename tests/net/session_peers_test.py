"""Runs whole downloads against servers that answer as they should not, and compares what became of
them, the reason told and the files. Arguments: the program that runs Windows programs, the tool."""

import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import zlib

sys.path.insert(0, os.path.dirname(__file__))
from peers import ScriptedServer, answer, free_port, reset  # noqa: E402

WINE, TOOL = sys.argv[1:3]
WORK = pathlib.Path(tempfile.mkdtemp(prefix="vesk-net-"))
CRC_DIFFERS, DONE, FAILED = 0, 1, 2
BODY = bytes(range(256)) * 16
CRC = f"{zlib.crc32(BODY):X}"
HEAD = answer(BODY)[:-len(BODY)]
OLD = b"the archive that was there before"


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


class Sessions(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=WORK))
        self.target = self.folder / "a.zip"
        self.partial = self.folder / "a.zip.vesk-part"

    def run_tool(self, proxy, downloads, timeout=20):
        """Downloads are pairs of checksum and addresses. Returns (result, size of the file, size of
        the partial one, reason) of each."""
        words = [word for crc, urls in downloads for word in (crc or "-", urls)]
        run = subprocess.run([WINE, TOOL, proxy, str(timeout), windows(self.target), *words],
                             timeout=100, stdin=subprocess.DEVNULL, capture_output=True, check=True)
        rows = [line.rstrip("\r").split("|", 3) for line in run.stdout.decode().splitlines()]
        return [(int(result), file, partial, reason) for result, file, partial, reason in rows]

    def serve(self, script):
        server = ScriptedServer(script)
        self.addCleanup(server.stop)
        return server, f"127.0.0.1:{server.port}"

    def check_table(self, table, timeout=20):
        """Rows of name, server, result with the checksum, result without one, reason of the first
        (behind the server's name) and of the second. Where it failed, the file that stood there must stay."""
        scripts = {name.replace(" ", "-"): script for name, script, *_ in table}
        _, proxy = self.serve(lambda c, url: scripts[url.rsplit("/", 1)[1]](c))
        self.target.write_bytes(OLD)
        standing = str(len(OLD))
        downloads = [(crc, "http://h/" + name) for name in scripts for crc in (CRC, None)]
        told = iter(self.run_tool(proxy, downloads, timeout))
        for name, _, with_crc, without, *reasons in table:
            for expected, reason in ((with_crc, reasons[0]), (without, reasons[-1])):
                with self.subTest(name, result=expected):
                    result, size, _, why = next(told)
                    self.assertEqual((result, why),
                                     (expected, f"h through proxy {proxy}: ".replace(
                                         ":", " port ", 1) + reason if reason else ""))
                    if expected != DONE:
                        self.assertEqual(size, standing, "the file that stood there")
                    standing = size

    def test_answers(self):
        def page(text, **more):
            return lambda c: c.sendall(answer(text, **more))

        def send(text):
            return lambda c: c.sendall(text)

        def length(text):
            return send(HEAD.replace(b"4096", text) + BODY)

        counts = "only HTTP/1.1 200 OK counts"
        no_length = "HTTP/1.1 200 OK, no Content-Length above 0"
        short = "512 of 4,096 bytes came"
        self.check_table([
            ("cut", send(HEAD + BODY[:512]), CRC_DIFFERS, FAILED, short),
            ("cut before the body", send(HEAD), CRC_DIFFERS, FAILED, "0 of 4,096 bytes came"),
            ("cut in the header", send(HEAD[:-1]), FAILED, FAILED,
             'the answer has no HTTP header, a text came instead: '
             '"HTTP/1.1 200 OK Content-Length: 4096"'),
            ("closed at once", send(b""), FAILED, FAILED,
             "the connection was closed without an answer"),
            ("announced shorter", length(b"12"), DONE, DONE, ""),
            ("announced longer", length(b"5000"), DONE, FAILED, "", "4,096 of 5,000 bytes came"),
            ("announced huge", length(b"99999999999"), DONE, FAILED, "",
             "4,096 of 99,999,999,999 bytes came"),
            ("announced negative", length(b"-5"), FAILED, FAILED, no_length),
            ("announced nothing", length(b"0"), FAILED, FAILED, no_length),
            ("announced twice", length(b"4096\r\nContent-Length: 1"), DONE, DONE, ""),
            ("announced twice and first less", length(b"1\r\nContent-Length: 4096"), DONE, DONE, ""),
            ("no length", send(HEAD.replace(b"Content-Length", b"X") + BODY), FAILED, FAILED,
             no_length),
            ("chunked", send(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1000\r\n" +
                             BODY + b"\r\n0\r\n\r\n"), FAILED, FAILED, no_length),
            ("as HTTP 1.0", send(HEAD.replace(b"1.1", b"1.0") + BODY), FAILED, FAILED,
             "HTTP/1.0 200 OK, " + counts),
            ("as HTTP 0.9", send(BODY), FAILED, FAILED, "the answer has no HTTP header"),
            ("page", page(b"<html><title>Log in</title><p>first"), CRC_DIFFERS, DONE,
             f"CRC differs, expected {CRC}, found 134FD3C3, a page came instead: \"Log in first\"",
             ""),
            ("error page", page(b"<p>Too busy", status="HTTP/1.1 503 Busy"), FAILED, FAILED,
             'HTTP/1.1 503 Busy, a page came instead: "Too busy"'),
            ("not found", page(b"", status="HTTP/1.1 404 Not Found"), FAILED, FAILED,
             "HTTP/1.1 404 Not Found"),
            ("led into a request", page(b"", status="HTTP/1.1 302 Found\r\n"
                                        "Location: http://h/x\nX-Evil: 1"), FAILED, FAILED,
             "HTTP/1.1 302 Found, the server redirects to an address with a control character in it"),
        ])

    def test_cut_and_reset_anywhere(self):
        whole = HEAD + BODY
        offsets = [0, 1, 8, len(HEAD) // 2, *range(len(HEAD) - 4, len(HEAD) + 2)]
        offsets += range(len(HEAD) + 400, len(whole) - 1, (len(BODY) - 400) // 9)
        offsets += [len(whole) - 1, len(whole)]
        self.assertGreaterEqual(len(offsets), 20)

        def script(connection, url):
            offset, kind = url.rsplit("/", 1)[1].split("-")
            connection.sendall(whole[:int(offset)])
            if kind == "reset":
                time.sleep(0.05)
                reset(connection)

        _, proxy = self.serve(script)
        self.target.write_bytes(OLD)
        downloads = [(crc, f"http://h/{offset}-{kind}") for offset in offsets
                     for kind in ("cut", "reset") for crc in (CRC, None)]
        for (crc, url), (result, size, partial, why) in zip(
                downloads, self.run_tool(proxy, downloads)):
            came = int(url[9:].split("-")[0]) - len(HEAD)
            with self.subTest(url, crc=crc):
                expected = FAILED if came < 0 or crc is None and came < len(BODY) else \
                    DONE if came == len(BODY) else CRC_DIFFERS
                self.assertEqual(result, expected)
                if result == DONE:
                    self.target.write_bytes(OLD)
                    continue
                self.assertEqual(size, str(len(OLD)))
                self.assertTrue(came < 0 or partial == str(came), partial)
                # Wine reports a reset as if it were an ordinary end.
                self.assertRegex(why, "connection reset by peer|" + (
                    f"{came:,} of 4,096 bytes came$" if came >= 0 else
                    "closed without an answer$" if came == -len(HEAD) else "no HTTP header, a text"))
        # Nothing has no checksum, not even that of nothing.
        (result, *_), = self.run_tool(proxy, [("0", f"http://h/{len(HEAD)}-cut")])
        self.assertEqual(result, CRC_DIFFERS)

    def test_nobody_accepts_the_connection(self):
        with socket.socket() as full:
            full.bind(("127.0.0.1", 0))
            full.listen(0)
            port = full.getsockname()[1]
            waiting = [socket.socket() for _ in range(4)]
            for one in waiting:
                self.addCleanup(one.close)
                one.setblocking(False)
                one.connect_ex(("127.0.0.1", port))
            started = time.monotonic()
            self.assertEqual(self.run_tool(f"127.0.0.1:{port}", [(CRC, "http://h/x")], 1),
                             [(FAILED, "none", "none", f"proxy 127.0.0.1 port {port}: no data for 1 s")])
            self.assertLess(time.monotonic() - started, 20)

    def test_silence_in_every_state_ends_when_the_time_is_up(self):
        def silent_after(text):
            def script(connection):
                connection.sendall(text)
                connection.recv(1)
            return script

        def redirects(connection):
            connection.sendall(answer(b"", "Location: http://h/in-circles",
                                      status="HTTP/1.1 302 Found"))

        def drips_header(connection):
            connection.sendall(b"HTTP/1.1 200 OK\r\n")
            while True:
                connection.sendall(b"X: y\r\n")
                time.sleep(0.02)

        silent = "no data for 1 s"
        started = time.monotonic()
        _, proxy = self.serve(lambda c, _: silent_after(b"")(c))
        self.assertEqual([row[3] for row in self.run_tool(proxy, [(CRC, "http://h/x")], 1)],
                         [f"proxy {proxy}: {silent}".replace(":", " port ", 1)])
        self.check_table([
            ("in mid body", silent_after(HEAD + BODY[:512]), FAILED, FAILED,
             silent + ", 512 of 4,096 bytes came"),
            ("before the body", silent_after(HEAD), FAILED, FAILED,
             silent + ", 0 of 4,096 bytes came"),
        ], timeout=1)
        for script in (redirects, drips_header):
            _, proxy = self.serve(lambda c, _, script=script: script(c))
            (result, _, _, why), = self.run_tool(proxy, [(None, "http://h/in-circles")], 1)
            self.assertEqual((result, why[-len(silent):]), (FAILED, silent))
        self.assertLess(time.monotonic() - started, 60)

    def test_slow_bytes_are_no_silence(self):
        def slow(connection, _):
            connection.sendall(HEAD)
            for at in range(0, len(BODY), 512):
                time.sleep(0.3)
                connection.sendall(BODY[at:at + 512])

        _, proxy = self.serve(slow)
        self.assertEqual(self.run_tool(proxy, [(CRC, "http://h/x")], 1), [(DONE, "4096", "none", "")])

    def test_of_three_addresses_the_reasons_of_all_are_told(self):
        def script(connection, url):
            if url.endswith("silent"):
                connection.recv(1)
            elif url.endswith("half"):
                connection.sendall(HEAD + BODY[:512])
                connection.recv(1)
            elif url.endswith("good"):
                connection.sendall(answer(BODY))
            else:
                connection.sendall(answer(b"", status="HTTP/1.1 404 Not Found"))

        _, proxy = self.serve(script)
        by = " through proxy " + proxy.replace(":", " port ")
        rows = self.run_tool(proxy, [
            (CRC, "http://a/silent,http://b/none,http://c/good"),
            (CRC, "http://a/half,http://b/none,http://c/good"),
            (CRC, "http://a/none,http://b/none,http://c/none"),
            (CRC, "http://a/none, http://b/a\tb ,http://c/good")], 1)
        self.assertEqual([row[0] for row in rows], [DONE, DONE, FAILED, FAILED])
        missing = ": HTTP/1.1 404 Not Found"
        self.assertEqual([row[3] for row in rows[2:]], [
            f"a{by}{missing}; b{by}{missing}; c{by}{missing}",
            f'a{by}{missing}; "http://b/a b": the address holds a control character'])

    def test_who_cannot_be_reached(self):
        port = free_port()
        self.assertEqual([row[3] for row in self.run_tool(f"127.0.0.1:{port}", [("-", "http://h/")])],
                         [f"proxy 127.0.0.1 port {port}: connection refused"])
        self.assertEqual(
            [row[3] for row in self.run_tool("direct", [
                ("-", "http://no-such-host.invalid/x"), ("-", "http://h:8080/x"),
                ("-", "https://h/x"), ("-", " ")])],
            ["no-such-host.invalid: host not found",
             "h:8080: host not found, the address must have no port",
             '"https://h/x": only addresses that begin with http:// can be downloaded',
             '"": the address names no host'])

    def test_files(self):
        _, proxy = self.serve(lambda c, _: c.sendall(answer(BODY)))
        done = [(DONE, "4096", "none", "")]
        for name, prepare in (
                ("nothing", lambda: None),
                ("partial file", lambda: self.partial.write_bytes(b"left by a killed run" * 999)),
                ("partial file in other case",
                 lambda: (self.folder / "A.zip.vesk-part").write_bytes(b"left")),
                ("read-only partial file", lambda: (self.partial.write_bytes(b"left"),
                                                    self.partial.chmod(0o444))),
                ("file", lambda: self.target.write_bytes(OLD)),
                ("read-only file", lambda: (self.target.write_bytes(OLD),
                                            self.target.chmod(0o444)))):
            with self.subTest(name):
                prepare()
                self.assertEqual(self.run_tool(proxy, [(CRC, "http://h/x")]), done)
                self.assertEqual(self.target.read_bytes(), BODY)
                self.target.unlink()
        self.target.mkdir()  # nothing can take its place
        (result, _, partial, why), = self.run_tool(proxy, [(CRC, "http://h/x")])
        self.assertEqual((result, partial), (FAILED, "4096"))
        self.assertIn(f"cannot replace {windows(self.target)}: ", why)
        self.partial.unlink()
        self.partial.mkdir()
        (result, _, _, why), = self.run_tool(proxy, [(CRC, "http://h/x")])
        self.assertEqual(result, FAILED)
        self.assertIn(f"cannot create {windows(self.partial)}: ", why)

    def test_a_full_disk_is_told(self):
        disk = WORK / "disk"
        disk.mkdir()
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", str(disk)],
                          capture_output=True).returncode != 0:
            self.skipTest("no rights to make a small disk")
        self.addCleanup(subprocess.run, ["umount", str(disk)], check=True)
        self.target = disk / "a.zip"
        _, proxy = self.serve(lambda c, _: c.sendall(answer(BODY * 100)))
        for crc, expected in ((CRC, CRC_DIFFERS), (None, FAILED)):
            (result, size, _, why), = self.run_tool(proxy, [(crc, "http://h/x")])
            self.assertEqual((result, size), (expected, "none"))
            self.assertRegex(why, r"^cannot write .*a\.zip\.vesk-part: .+, [\d,]+ of 409,600 bytes")


if __name__ == "__main__":
    try:
        unittest.main(argv=[sys.argv[0], *sys.argv[3:]], verbosity=2)
    finally:
        subprocess.run(["rm", "-rf", str(WORK)], check=False)
