"""A web server with one file for tests of downloads: what it does to those who ask is set by the test."""
import http.server
import re
import threading


class ModelServer:
    """Answers by range.

    until          how many bytes of the file are sent before `go_on` is set
    breaks_after   after so many bytes the connection breaks, once
    tag            what it calls the version that it has
    has_ranges     whether it sends parts
    page           a web page, with which it answers whatever is asked for
    password       what a proxy's clients have to say; with it the server is a proxy that has the file itself
    ranges, paths  what was asked for, in order
    """

    def __init__(self, content):
        self.content, self.until, self.go_on = content, len(content), threading.Event()
        self.breaks_after, self.tag, self.has_ranges, self.page, self.password = None, '"1"', True, None, None
        self.ranges, self.paths = [], []
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler_for(self))
        self.address = f"http://127.0.0.1:{self.server.server_port}/"
        threading.Thread(target=self.server.serve_forever, args=(0.02,), daemon=True).start()

    def close(self):
        self.go_on.set()
        self.server.shutdown()
        self.server.server_close()

    def write(self, out, begin):
        broken, self.breaks_after = self.breaks_after, None
        if broken is not None:
            return out.write(self.content[begin:broken])
        out.write(self.content[begin:self.until])
        if self.until < len(self.content):
            self.go_on.wait()
            out.write(self.content[max(begin, self.until):])


def handler_for(server):
    class Handler(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            server.ranges.append(self.headers.get("Range"))
            server.paths.append(self.path)
            if server.password and self.headers.get("Proxy-Authorization") != server.password:
                return self.answer(407, {"Proxy-Authenticate": 'Basic realm="x"', "Content-Length": 0})
            if server.page:
                self.answer(200, {"Content-Type": "text/html; charset=utf-8", "Content-Length": len(server.page)})
                return self.wfile.write(server.page)
            return self.send_file()

        def send_file(self):
            whole, asked = len(server.content), self.headers.get("Range")
            same = self.headers.get("If-Range") in (None, server.tag)
            begin = int(re.fullmatch(r"bytes=(\d+)-", asked)[1]) if asked and same and server.has_ranges else 0
            headers = {"ETag": server.tag, "Content-Length": whole - begin}
            if begin:
                headers["Content-Range"] = f"bytes {begin}-{whole - 1}/{whole}"
            self.answer(206 if begin else 200, headers)
            try:
                server.write(self.wfile, begin)
            except ConnectionError:
                pass  # who asked has gone

        def answer(self, status, headers):
            self.send_response(status)
            for name, value in headers.items():
                self.send_header(name, str(value))
            self.end_headers()

        def log_message(self, *_):
            pass

    return Handler
