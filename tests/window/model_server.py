"""A web server with one file for tests of downloads. It answers by range, and may stop in the middle of an answer."""
import http.server
import re
import threading


class ModelServer:
    """`until`: how many bytes of the file are sent before `go_on` is set. `ranges`: what was asked for, in order."""

    def __init__(self, content):
        self.content, self.until, self.ranges, self.go_on = content, len(content), [], threading.Event()
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                asked = self.headers.get("Range")
                server.ranges.append(asked)
                whole = len(server.content)
                begin = int(re.fullmatch(r"bytes=(\d+)-", asked)[1]) if asked else 0
                self.send_response(206 if asked else 200)
                self.send_header("ETag", '"1"')
                self.send_header("Content-Length", str(whole - begin))
                if asked:
                    self.send_header("Content-Range", f"bytes {begin}-{whole - 1}/{whole}")
                self.end_headers()
                try:
                    self.wfile.write(server.content[begin:server.until])
                    if server.until < whole:
                        server.go_on.wait()
                        self.wfile.write(server.content[max(begin, server.until):])
                except ConnectionError:
                    pass  # who asked has gone

            def log_message(self, *_):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}/"
        threading.Thread(target=self.server.serve_forever, args=(0.02,), daemon=True).start()

    def close(self):
        self.go_on.set()
        self.server.shutdown()
        self.server.server_close()
