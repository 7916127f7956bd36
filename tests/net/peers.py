"""Servers on free loopback ports for tests of downloads: nginx, tinyproxy, and one that says what
a script tells it to. All are ended with the test that started them."""

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


def wait_for(host, port, process):
    for _ in range(500):
        try:
            socket.create_connection((host, port), 1).close()
            return
        except OSError:
            if process.poll() is not None:
                break
            time.sleep(0.02)
    raise RuntimeError(f"no server came up at {host}:{port}")


class ServerProcess:
    """A server program that is ended by stop."""

    def start(self, port, *command):
        self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for("127.0.0.1", port, self.process)

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
        self.port = free_port()
        try:
            with socket.socket() as probe:
                probe.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
                probe.bind((self.direct_host, 80))
            self.direct = True
        except OSError:
            self.direct = False
        listen = f"listen 127.0.0.1:{self.port};"
        if self.direct:
            listen += f" listen {self.direct_host}:80;"
        temporary = "".join(f"{kind}_temp_path {self.folder}/{kind};"
                            for kind in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
        config = self.folder / "nginx.conf"
        config.write_text(f"""
            daemon off; master_process off; pid {self.folder}/pid; error_log {self.folder}/log;
            events {{ worker_connections 64; }}
            http {{ access_log off; sendfile on; {temporary}
                server {{ {listen} root {self.root};
                    location /moved {{ return 302 http://{self.direct_host}/small.bin; }}
                    location /secret {{ return 401; }} }} }}""")
        self.start(self.port, "/usr/sbin/nginx", "-p", str(self.folder), "-e",
                   f"{self.folder}/log", "-c", str(config))


class Tinyproxy(ServerProcess):
    def __init__(self, folder):
        folder = pathlib.Path(folder)
        folder.mkdir()
        self.port = free_port()
        config = folder / "tinyproxy.conf"
        config.write_text(f"Port {self.port}\nListen 127.0.0.1\nTimeout 60\nAllow 127.0.0.1\n"
                          f'LogFile "{folder}/log"\nPidFile "{folder}/pid"\nMaxClients 20\n')
        self.start(self.port, "/usr/bin/tinyproxy", "-d", "-c", str(config))


class ScriptedServer:
    """Reads each request and hands connection and path to the script. Keeps the requests."""

    def __init__(self, script):
        self.script = script
        self.requests = []
        self.listener = socket.create_server(("127.0.0.1", 0), backlog=50)
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self.answer, args=(connection,), daemon=True).start()

    def answer(self, connection):
        connection.settimeout(30)
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        with connection:
            try:
                request = b""
                while not request.endswith(b"\r\n\r\n"):
                    piece = connection.recv(65536)
                    if not piece:
                        return
                    request += piece
                self.requests.append(request)
                self.script(connection, request.split(b" ")[1].decode())
            except OSError:
                pass  # the client hung up

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
