#!/usr/bin/env python3
"""Serves a folder's files on the loopback for the demonstration, until it is ended.

    serve.py FOLDER

Prints the port and begins: 80 where that can be bound, else a free one, to be used as a proxy (it
takes the file name from whatever address is asked for).
"""

import functools
import http.server
import sys


class Handler(http.server.SimpleHTTPRequestHandler):
    protocol_version = "HTTP/1.1"  # a download counts only with this in the status line

    def translate_path(self, path):
        return super().translate_path("/" + path.rsplit("/", 1)[-1])

    def log_message(self, *_):
        pass


def main(folder):
    handler = functools.partial(Handler, directory=folder)
    try:
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 80), handler)
    except OSError:
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    print(server.server_port, flush=True)
    server.serve_forever()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: serve.py FOLDER")
    main(sys.argv[1])
