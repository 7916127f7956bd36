"""Servers on free loopback ports for tests of downloads: nginx, tinyproxy, and one that says what
a script tells it to. All are ended with the test that started them."""

import contextlib
import pathlib
import socket
import struct
import subprocess
import threading
import time


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class ServerProcess:
    """A server program on a port of 127.0.0.1 that is ended by stop."""

    def start(self, folder, configure):
        """Another program may take the port first. Then the server ends, and gets another one.
        @param folder where it writes the file "pid" as soon as it listens
        @param configure writes what it reads, for a port, and returns its command"""
        for _ in range(5):
            self.port = free_port()
            with open(folder / "log", "ab") as said:
                self.process = subprocess.Popen(configure(self.port), stdin=subprocess.DEVNULL,
                                                stdout=said, stderr=said)
            for _ in range(1500):
                if (folder / "pid").exists():
                    return
                if self.process.poll() is not None:
                    break
                time.sleep(0.02)
            self.stop()
        raise RuntimeError("no server came up\n" + (folder / "log").read_text("utf-8", "replace"))

    def stop(self):
        self.process.terminate()
        self.process.wait()


class Nginx(ServerProcess):
    """Serves a folder at 127.0.0.1:port, and at direct_host:80 where the system allows that."""

    direct_host = "127.0.0.77"

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "root"
        self.root.mkdir(parents=True)
        self.folder.chmod(0o755)
        temporary = "".join(f"{kind}_temp_path {self.folder}/{kind};"
                            for kind in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
        config = self.folder / "nginx.conf"

        def configure(port):
            listen = f"listen 127.0.0.1:{port};"
            try:
                socket.create_server((self.direct_host, 80)).close()
                listen += f" listen {self.direct_host}:80;"
                self.direct = True
            except OSError:
                self.direct = False
            config.write_text(f"""
                daemon off; master_process off; pid {self.folder}/pid; error_log {self.folder}/log;
                events {{ worker_connections 64; }}
                http {{ access_log off; sendfile on; {temporary}
                    server {{ {listen} root {self.root};
                        location /secret {{ return 401; }} }} }}""")
            return ("/usr/sbin/nginx", "-p", str(self.folder), "-e", f"{self.folder}/log", "-c", str(config))

        self.start(self.folder, configure)


class Tinyproxy(ServerProcess):
    def __init__(self, folder):
        folder = pathlib.Path(folder)
        folder.mkdir()
        config = folder / "tinyproxy.conf"

        def configure(port):
            config.write_text(f"Port {port}\nListen 127.0.0.1\nTimeout 60\nAllow 127.0.0.1\n"
                              f'LogFile "{folder}/log"\nPidFile "{folder}/pid"\nMaxClients 20\n')
            return "/usr/bin/tinyproxy", "-d", "-c", str(config)

        self.start(folder, configure)


class ScriptedServer:
    """Reads each request and hands connection and path to the script. Keeps the requests."""

    def __init__(self, script):
        self.script = script
        self.requests = []
        self.listener = socket.create_server(("127.0.0.1", 0), backlog=50)
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        with contextlib.suppress(OSError):  # of a listener that is closed
            while True:
                connection, _ = self.listener.accept()
                threading.Thread(target=self.answer, args=(connection,), daemon=True).start()

    def answer(self, connection):
        connection.settimeout(30)
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        with connection, contextlib.suppress(OSError):  # the client may hang up
            request = b""
            while not request.endswith(b"\r\n\r\n"):
                piece = connection.recv(65536)
                if not piece:
                    return
                request += piece
            self.requests.append(request)
            self.script(connection, request.split(b" ")[1].decode())

    def stop(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()


def reset(connection):
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    connection.close()


def answer(body, *lines, status="HTTP/1.1 200 OK", length=None):
    """A complete answer with its announced length (the real one unless stated otherwise)."""
    head = [status, f"Content-Length: {len(body) if length is None else length}", *lines]
    return "\r\n".join(head).encode() + b"\r\n\r\n" + body
