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


def server_of(folder, port=0):
    """A server that does not run yet; port 0 means a free one."""
    handler = functools.partial(Handler, directory=folder)
    return http.server.ThreadingHTTPServer(("127.0.0.1", port), handler)


def main(folder):
    try:
        server = server_of(folder, 80)
    except OSError:
        server = server_of(folder)
    print(server.server_port, flush=True)
    server.serve_forever()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: serve.py FOLDER")
    main(sys.argv[1])
