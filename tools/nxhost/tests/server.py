"""An HTTP server on the loopback that answers well and badly, for the tests of transfers."""
import http.server
import socket
import ssl
import threading
import time
from urllib.parse import parse_qs, urlsplit


def pattern(size):
    """Bytes of every value, none of whose positions can be mistaken for another nearby."""
    block = b"".join(bytes((i & 255, i >> 8)) for i in range(1 << 15))
    return (block * (size // len(block) + 1))[:size]


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def answer(self):
        self.server.requests += 1
        url = urlsplit(self.path)
        self.query = {name: values[0] for name, values in parse_qs(url.query).items()}
        getattr(self, "on_" + url.path.strip("/"), self.on_unknown)()

    do_GET = do_POST = do_PUT = do_PATCH = do_DELETE = do_HEAD = do_BREW = answer

    def body(self):
        if self.headers.get("Transfer-Encoding") == "chunked":
            body = b""
            while size := int(self.rfile.readline(), 16):
                body += self.rfile.read(size)
                self.rfile.readline()
            self.rfile.readline()
            return body
        return self.rfile.read(int(self.headers.get("Content-Length", 0)))

    def send(self, body, status=200, headers=()):
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def until_client_goes(self):
        self.close_connection = True
        while self.rfile.read1(1 << 16):
            pass

    def on_unknown(self):
        self.send(b"nothing here", 404)

    def on_hello(self):
        self.send(b"hello", headers=[("X-Twice", "one"), ("X-Twice", "two"), ("Set-Cookie", "a=1"), ("Set-Cookie", "b=2")])

    def on_status(self):
        self.send(b"", int(self.query["code"]))

    def on_tell(self):
        """What came: the method, the type of the body, the header asked for, the body."""
        kind = self.headers.get("Content-Type", "-").split(";")[0]
        told = f"{self.command} {kind} {self.headers.get(self.query.get('header', ''), '-')}\n".encode()
        self.send(told + self.body())

    def on_echo(self):
        self.send(self.body())

    def on_huge(self):
        self.send(pattern(int(self.query["size"])))

    def on_chunked(self):
        self.send_response(200)
        self.send_header("Transfer-Encoding", "chunked")
        self.end_headers()
        self.wfile.write(b"3\r\nabc\r\n4\r\ndefg\r\n0\r\n\r\n")

    def on_redirect(self):
        self.body()
        self.send(b"elsewhere", int(self.query.get("code", 302)), [("Location", self.query["to"])])

    def on_loop(self):
        self.send(b"", 302, [("Location", "/loop")])

    def on_stall(self):
        """Never answers."""
        self.until_client_goes()

    def on_halfway(self):
        """Half of the body, and then nothing more."""
        self.send_response(200)
        self.send_header("Content-Length", "10")
        self.end_headers()
        self.wfile.write(b"12345")
        self.until_client_goes()

    def on_announced(self):
        """The start of a body of the size asked for."""
        self.send_response(200)
        self.send_header("Content-Length", self.query["size"])
        self.end_headers()
        self.wfile.write(b"12345")
        self.until_client_goes()

    def on_full(self):
        """The address of a socket that accepts no more connections."""
        full = socket.socket()
        full.bind(("127.0.0.1", 0))
        full.listen(0)
        waiting = [socket.socket() for _ in range(4)]
        for client in waiting:
            client.setblocking(False)
            client.connect_ex(full.getsockname())
        self.server.kept += [full, *waiting]
        self.send(f"http://127.0.0.1:{full.getsockname()[1]}/".encode())

    def on_deaf(self):
        """Does not read what is sent to it until it is told to."""
        self.server.listen_again.wait()
        self.server.listen_again.clear()
        self.until_client_goes()

    def on_listen(self):
        self.server.listen_again.set()
        self.send(b"")

    def on_slow(self):
        self.send_response(200)
        self.send_header("Content-Length", "20")
        self.end_headers()
        for byte in b"twenty bytes, slowly":
            time.sleep(0.005)
            self.wfile.write(bytes((byte,)))

    def on_early(self):
        """Ends in the middle of what was announced."""
        self.wfile.write(b"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345")
        self.close_connection = True

    def on_silent(self):
        self.close_connection = True

    def on_gibberish(self):
        self.wfile.write(b"\0\1\2 this is no answer \xff\r\n\r\n")
        self.close_connection = True

    def on_headers(self):
        """Headers without end."""
        self.close_connection = True
        try:
            self.wfile.write(b"HTTP/1.1 200 OK\r\n")
            while True:
                self.wfile.write(b"X-More: " + b"m" * 1000 + b"\r\n")
        except OSError:
            pass


class Server(http.server.ThreadingHTTPServer):
    """Serves on threads of its own as long as the `with` block lasts. `certificate` is a file with its key."""
    daemon_threads = True
    request_queue_size = 128

    def __init__(self, certificate=None, address="127.0.0.1"):
        super().__init__((address, 0), Handler)
        self.requests = 0
        self.listen_again = threading.Event()
        self.kept = []
        scheme = "http"
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            self.socket = context.wrap_socket(self.socket, server_side=True)
            scheme = "https"
        self.url = f"{scheme}://{address}:{self.server_port}"

    def handle_error(self, request, client_address):
        pass  # tests close connections on purpose

    def __enter__(self):
        threading.Thread(target=self.serve_forever, args=(0.05,), daemon=True).start()
        return self

    def __exit__(self, *_):
        self.shutdown()
        self.server_close()
