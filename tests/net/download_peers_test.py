"""Runs whole downloads against real servers and against scripted ones that answer as they should not, and
compares what became of them, the reasons told, the events and the files.
Arguments: the program that runs Windows programs, the tool."""

import os
import resource
import socket
import sys
import time
import unittest
import zlib

from fixtures import fresh_folder, mount_disk, run_in_wine, unmount_disk, windows_path
from peers import Nginx, ScriptedServer, Tinyproxy, answer, reset

WINE, TOOL = sys.argv[1:]
CRC_DIFFERS, DONE, FAILED = 0, 1, 2
BODY = bytes(range(256)) * 16
CRC = f"{zlib.crc32(BODY):X}"
HEAD = answer(BODY)[:-len(BODY)]
NOT_FOUND = answer(b"", status="HTTP/1.1 404 Not Found")
OLD = b"the archive that was there before"


def redirect(where):
    return answer(b"gone", "LOCATION: " + where, status="HTTP/1.1 302 Found")


def silent_after(text):
    def script(connection):
        connection.sendall(text)
        connection.recv(1)
    return script


def endless(text, pause=0.0):
    def script(connection):
        connection.sendall(b"HTTP/1.1 200 OK\r\n")
        while True:
            connection.sendall(text)
            time.sleep(pause)
    return script


def byte_by_byte(connection):
    for byte in HEAD + BODY[:50]:
        connection.sendall(bytes([byte]))
        time.sleep(0.001)
    connection.sendall(BODY[50:])


def slowly(connection):
    connection.sendall(HEAD)
    for at in range(0, len(BODY), 512):
        time.sleep(0.3)
        connection.sendall(BODY[at:at + 512])


class Peers(unittest.TestCase):
    def setUp(self):
        self.folder = fresh_folder(self, "vesk-net-")
        self.target = self.folder / "a.zip"
        self.partial = self.folder / "a.zip.vesk-part"

    @staticmethod
    def run_tool(*arguments):
        run = run_in_wine([WINE, TOOL, *map(str, arguments)], check=True)
        return run.stdout.decode("latin-1").replace("\r", "").splitlines()

    def run_sessions(self, proxy, downloads, timeout=20, *options):
        """Downloads are pairs of checksum and addresses. Returns (result, size of the file, size of
        the partial one, reason) of each; what they left open is checked and cut off."""
        words = [word for crc, urls in downloads for word in (crc or "-", urls)]
        through = [] if proxy == "direct" else ["--proxy", proxy]
        rows = [line.split("|", 5) for line in self.run_tool(
            "--session", timeout, *through, *options, windows_path(self.target), *words)]
        self.assertEqual({row[3] for row in rows}, {"0 objects, 0 sockets, 0 lookups, 0 windows"})
        # The first download loads what later ones share; from then on nothing may be added.
        handles = [int(row[4]) for row in rows[1:]]
        self.assertLessEqual(len(set(handles)), 1, handles)
        return [(int(result), file, partial, why) for result, file, partial, _, _, why in rows]

    def run_download(self, *arguments):
        """The events of one download as lines."""
        return self.run_tool("--access", 2, *arguments, windows_path(self.target))

    def start(self, server):
        self.addCleanup(server.stop)
        return server, f"127.0.0.1:{server.port}"

    def serve(self, script):
        """A server, and its address as a proxy."""
        return self.start(ScriptedServer(script))

    def check_table(self, timeout, table):
        """Rows of name, what the server sends or does, result with the checksum, result without one, reason of
        the first and of the second. Where it failed, the file that stood there must stay."""
        rows = {row[0].replace(" ", "-"): row for row in table}

        def script(connection, url):
            does = rows[url.rsplit("/", 1)[1]][1]
            return does(connection) if callable(does) else connection.sendall(does)

        _, proxy = self.serve(script)
        self.target.write_bytes(OLD)
        standing = str(len(OLD))
        downloads = [(crc, "http://h/" + name) for name in rows for crc in (CRC, None)]
        told = iter(self.run_sessions(proxy, downloads, timeout))
        by = "proxy " + proxy.replace(":", " port ") + ": "
        for name, _, with_crc, without, *reasons in table:
            for expected, reason in ((with_crc, reasons[0]), (without, reasons[-1])):
                with self.subTest(name, result=expected):
                    result, size, _, why = next(told)
                    self.assertEqual(result, expected)
                    self.assertEqual(why.replace("h through " + by, "").replace(by, "not reached: "), reason)
                    if expected != DONE:
                        self.assertEqual(size, standing, "the file that stood there")
                    standing = size

    def test_answers(self):
        def length(text):
            return HEAD.replace(b"4096", text) + BODY

        most = 16 * 1024 * 1024
        start = HEAD[:-4] + b"\r\nX: "
        largest = start + b"y" * (most - len(start) - 4) + b"\r\n\r\n" + BODY
        too_large = "not reached: the header of the server's answer does not end"
        no_length = "HTTP/1.1 200 OK, no Content-Length above 0"
        self.check_table(20, [
            ("byte by byte", byte_by_byte, DONE, DONE, ""),
            ("closed at once", b"", FAILED, FAILED, "the connection was closed without an answer"),
            ("announced shorter", length(b"12"), DONE, DONE, ""),
            ("announced longer", length(b"5000"), DONE, FAILED, "", "4,096 of 5,000 bytes came"),
            ("announced huge", length(b"99999999999"), DONE, FAILED, "",
             "4,096 of 99,999,999,999 bytes came"),
            ("announced nothing", length(b"-5"), FAILED, FAILED, no_length),
            ("announced twice", length(b"1\r\nContent-Length: 4096"), DONE, DONE, ""),
            ("as HTTP 0.9", BODY, FAILED, FAILED, "the answer has no HTTP header"),
            ("page", answer(b"<html><title>Log in</title><p>first"), CRC_DIFFERS, DONE,
             f"CRC differs, expected {CRC}, found 134FD3C3, a page came instead: \"Log in first\"", ""),
            ("error page", answer(b"<p>Too busy", status="HTTP/1.1 503 Busy"), FAILED, FAILED,
             'HTTP/1.1 503 Busy, a page came instead: "Too busy"'),
            ("not found", NOT_FOUND, FAILED, FAILED, "HTTP/1.1 404 Not Found"),
            ("largest header", largest, DONE, DONE, ""),
            ("larger header", largest.replace(b"X: ", b"X:  "), FAILED, FAILED, too_large),
            ("endless header", endless(b"X: " + b"y" * 60_000 + b"\r\n"), FAILED, FAILED, too_large),
            ("endless page", endless(b"\r\n" + b"<p>more " * 9999), FAILED, FAILED,
             no_length + ', a page came instead: "' + "more " * 11 + 'more..."'),
            ("empty address", redirect(""), FAILED, FAILED, 'HTTP/1.1 302 Found, a text came instead: "gone"'),
            ("led into a request", redirect("http://h/\nX: y"), FAILED, FAILED,
             "HTTP/1.1 302 Found, the server redirects to an address with a control character in it"),
        ])

    def test_a_file_that_does_not_end(self):
        _, proxy = self.serve(lambda c, _: endless(b"Content-Length: 10\r\n\r\n" + bytes(60_000))(c))
        differs, failed = self.run_sessions(proxy, [(CRC, "http://h/x"), (None, "http://h/x")])
        self.assertEqual((differs[0], failed[0]), (CRC_DIFFERS, FAILED))
        for told in (differs[-1], failed[-1]):
            self.assertRegex(told, r"(1[6-9]|2\d),\d+,\d+ bytes came and 10 were announced$")

    def test_cut_and_reset_anywhere(self):
        whole, begun = HEAD + BODY, len(HEAD)
        offsets = [0, 1, 8, begun // 2, *range(begun - 4, begun + 2),
                   *range(begun + 400, len(whole) - 1, (len(BODY) - 400) // 9), len(whole) - 1, len(whole)]
        self.assertGreaterEqual(len(offsets), 20)

        def script(connection, url):
            offset, kind = url.rsplit("/", 1)[1].split("-")
            connection.sendall(whole[:int(offset)])
            if kind == "reset":
                time.sleep(0.05)
                reset(connection)

        _, proxy = self.serve(script)
        self.target.write_bytes(OLD)
        downloads = [(offset - begun, crc, f"http://h/{offset}-{kind}") for offset in offsets
                     for kind in ("cut", "reset") for crc in (CRC, None)]
        # Nothing has no checksum, not even that of nothing.
        downloads.append((0, "0", f"http://h/{begun}-cut"))
        told = self.run_sessions(proxy, [download[1:] for download in downloads])
        standing = str(len(OLD))
        for (came, crc, url), (result, size, partial, why) in zip(downloads, told, strict=True):
            with self.subTest(url, crc=crc):
                expected = FAILED if came < 0 or crc is None and came < len(BODY) else \
                    DONE if came == len(BODY) else CRC_DIFFERS
                standing = size if expected == DONE else standing
                self.assertEqual((result, size), (expected, standing))
                self.assertTrue(came < 0 or partial == ("none" if result == DONE else str(came)), partial)
                # Wine reports a reset as if it were an ordinary end.
                self.assertRegex(why, "connection reset by peer|" + (
                    "^$" if result == DONE else f"{came:,} of 4,096 bytes came$" if came >= 0 else
                    "closed without an answer$" if came == -begun else "no HTTP header, a text"))

    def test_silence_in_every_state_ends_when_the_time_is_up(self):
        silent = "no data for 3 s"
        with socket.socket() as full:  # nobody accepts the connection
            full.bind(("127.0.0.1", 0))
            full.listen(0)
            proxy = f"127.0.0.1:{full.getsockname()[1]}"
            for _ in range(4):
                waiting = socket.socket()
                self.addCleanup(waiting.close)
                waiting.setblocking(False)
                waiting.connect_ex(full.getsockname())
            self.assertEqual(self.run_sessions(proxy, [(CRC, "http://h/x")], 3),
                             [(FAILED, "none", "none", f"proxy {proxy.replace(':', ' port ')}: {silent}")])
        started = time.monotonic()
        self.check_table(3, [
            ("before the header", silent_after(b""), FAILED, FAILED, "not reached: " + silent),
            ("drops of a header", endless(b"X: y\r\n", 0.02), FAILED, FAILED,
             "not reached: " + silent),
            ("before the body", silent_after(HEAD), FAILED, FAILED, silent + ", 0 of 4,096 bytes came"),
            ("in mid body", silent_after(HEAD + BODY[:512]), FAILED, FAILED,
             silent + ", 512 of 4,096 bytes came")])
        self.check_table(2, [("slow bytes are no silence", slowly, DONE, DONE, "")])  # 2.4 s in all
        _, proxy = self.serve(lambda c, url: c.sendall(redirect(url)))
        (result, _, _, why), = self.run_sessions(proxy, [(None, "http://h/in-circles")], 3)
        self.assertEqual((result, why[-len(silent):]), (FAILED, silent))
        self.assertLess(time.monotonic() - started, 180)

    def test_of_three_addresses_the_reasons_of_all_are_told(self):
        scripts = {"silent": silent_after(b""), "half": silent_after(HEAD + BODY[:512]),
                   "good": lambda c: c.sendall(answer(BODY)),
                   "none": lambda c: c.sendall(NOT_FOUND), "closed": lambda _: None}
        _, proxy = self.serve(lambda c, url: scripts[url.rsplit("/", 1)[1]](c))
        through = f" through proxy {proxy.replace(':', ' port ')}: "
        missing = through + "HTTP/1.1 404 Not Found"
        closed = through + "the connection was closed without an answer"
        self.assertEqual([(result, why) for result, _, _, why in self.run_sessions(proxy, [
            (CRC, "http://a/silent,http://b/none,http://c/good"),
            (CRC, "http://a/half,http://b/none,http://c/good"),
            (CRC, "http://a/none,http://b/none,http://c/none"),
            (CRC, ",".join(f"http://{host}/none" for host in "vwabc")),  # of so many the last ones
            (CRC, "http://a/none,http://b/none,http://c/closed"),
            (CRC, "http://a/none, http://b/a\tb ,http://c/good")], 3)], [
                (DONE, ""), (DONE, ""), (FAILED, f"a{missing}; b{missing}; c{missing}"),
                (FAILED, "; ".join(host + missing for host in "wabc")),
                (FAILED, f"a{missing}; b{missing}; c{closed}"),
                (FAILED, f'a{missing}; "http://b/a b": the address holds a control character')])

    def test_who_cannot_be_reached(self):
        with socket.socket() as silent:  # which nobody else can take, and that does not listen
            silent.bind(("127.0.0.1", 0))
            port = silent.getsockname()[1]
            self.assertEqual([row[3] for row in self.run_sessions(f"127.0.0.1:{port}", [("-", "http://h/")])],
                             [f"proxy 127.0.0.1 port {port}: connection refused"])
        self.assertEqual(
            [row[3] for row in self.run_sessions("direct", [
                ("-", "http://no-such-host.invalid/x"), ("-", "http://h:8080/x"),
                ("-", "https://h/x"), ("-", " ")])],
            ["no-such-host.invalid: host not found",
             "h:8080: host not found, the address must have no port",
             '"https://h/x": only addresses that begin with http:// can be downloaded',
             '"": the address names no host'])
        self.assertEqual(self.run_download("--proxy", "h:70000", "http://h/")[0][:11],
                         "Error 40014")

    def test_redirects(self):
        server, proxy = self.serve(lambda c, url: c.sendall(
            answer(BODY) if url[-1] == "5" else redirect(url[:-1] + str(int(url[-1]) + 1))))
        self.assertEqual(self.run_sessions(proxy, [(CRC, "http://h/1")])[0][0], DONE)
        self.assertEqual(b"".join(request.split()[1][-1:] for request in server.requests), b"12345")
        page = redirect("/2")
        self.assertEqual(
            self.run_download("--proxy", proxy, "--no-redirect", "1", "http://h/1"),
            [f"Starting 4 {len(page) - 4} HTTP/1.1 302 Found", "Completed", "Bytes 4"])

    def test_files(self):
        _, proxy = self.serve(lambda c, _: c.sendall(answer(BODY)))
        for name, left, mode in (
                ("none", b"", 0o644), (self.partial.name, b"left by a killed run" * 999, 0o644),
                ("A.zip.vesk-part", b"left", 0o644), (self.partial.name, b"left", 0o444),
                (self.target.name, OLD, 0o644), (self.target.name, OLD, 0o444)):
            with self.subTest(name, mode=mode):
                (self.folder / name).write_bytes(left)
                (self.folder / name).chmod(mode)
                self.assertEqual(self.run_sessions(proxy, [(CRC, "http://h/x")]), [(DONE, "4096", "none", "")])
                self.assertEqual(self.target.read_bytes(), BODY)
                self.target.unlink()
        self.target.write_bytes(OLD)
        self.target.chmod(0o444)
        (result, *_), = self.run_sessions(proxy, [(CRC, "http://h/x")], 20, "--held", 1)
        self.assertEqual((result, self.target.read_bytes()), (FAILED, OLD))
        self.assertFalse(self.target.stat().st_mode & 0o222)
        self.target.unlink()
        for name, verb, partial in ((self.target, "replace", "4096"), (self.partial, "create", "none")):
            self.partial.unlink(missing_ok=True)
            name.mkdir()  # nothing can take its place
            (result, _, size, why), = self.run_sessions(proxy, [(CRC, "http://h/x")])
            self.assertEqual((result, size), (FAILED, partial))
            self.assertIn(f"cannot {verb} {windows_path(name)}: ", why)
        # A single download minds letter case.
        for name, content in (("b.zip", BODY), ("B.zip", OLD + BODY)):
            self.target = self.folder / "b.zip"
            self.target.unlink(missing_ok=True)
            (self.folder / name).write_bytes(OLD)
            self.run_download("--proxy", proxy, "http://h/x")
            self.assertEqual((self.folder / name).read_bytes(), content)

    def test_a_full_disk_is_told(self):
        disk = self.folder / "disk"
        self.addCleanup(unmount_disk, disk)
        if not mount_disk(disk, 65536):
            self.skipTest("no rights to make a small disk")
        self.target = disk / "a.zip"
        _, proxy = self.serve(lambda c, _: c.sendall(answer(BODY * 100)))
        for crc, expected in ((CRC, CRC_DIFFERS), (None, FAILED)):
            (result, size, _, why), = self.run_sessions(proxy, [(crc, "http://h/x")])
            self.assertEqual((result, size), (expected, "none"))
            self.assertRegex(why, r"^cannot write .*a\.zip\.vesk-part: .+, [\d,]+ of 409,600 bytes")

    def test_handlers_may_cancel_restart_and_destroy_in_every_event(self):
        for event in ("starting", "data", "completed", "error"):
            page = NOT_FOUND if event == "error" else answer(b"b" * 3_000_000)
            _, proxy = self.serve(lambda c, _, page=page: c.sendall(page))
            for action in ("cancel", "restart", "destroy"):
                with self.subTest(f"{action} in {event}"):
                    lines = self.run_download("--proxy", proxy, "--act", f"{event}:{action}",
                                              "http://h/x")
                    done = lines.index(f"{action} in {event}")
                    if action != "restart":
                        self.assertEqual(len(lines), done + 2, lines)
                    elif event == "error":
                        self.assertEqual(lines[done + 1], lines[done - 1])
                    else:
                        self.assertEqual(lines[-2:], ["Completed", "Bytes 3000000"])
                        self.assertEqual(self.target.stat().st_size, 3_000_000)

    def test_nginx_and_tinyproxy_serve_the_same_bytes(self):
        nginx, address = self.start(Nginx(self.folder / "nginx"))
        _, tinyproxy = self.start(Tinyproxy(self.folder / "tinyproxy"))
        content = os.urandom(300_000)
        (nginx.root / "small.bin").write_bytes(content)
        routes = [(tinyproxy, "http://" + address)]
        if nginx.direct:
            routes += [("direct", "http://" + nginx.direct_host)]
        else:
            print("left out: downloads without a proxy, as port 80 cannot be bound", flush=True)
        for proxy, url in routes:
            rows = self.run_sessions(proxy, [(f"{zlib.crc32(content):X}", url + "/small.bin"),
                                             ("-", url + "/none"), ("-", url + "/secret")])
            self.assertEqual([row[:2] for row in rows], [(DONE, "300000"), *[(FAILED, "300000")] * 2])
            self.assertEqual([row[3][-12:] for row in rows[1:]], ["04 Not Found", "Unauthorized"])

    def test_memory_stays_flat(self):
        nginx, address = self.start(Nginx(self.folder / "nginx"))
        with open(nginx.root / "huge.bin", "wb") as huge:
            huge.truncate(400_000_000)
        self.assertIn("Bytes 400000000", self.run_download("--proxy", address, "http://h/huge.bin"))
        most = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
        self.assertLess(most, 100_000, "kilobytes in memory")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
