"""A proxy between client and server that counts, delays and drops requests."""
import select
import socket
import threading
from urllib.parse import urlsplit


class Proxy:
    """Forwards connections to the server until it is told to drop them or to hold requests back."""

    def __init__(self, server):
        self.target = (urlsplit(server).hostname, urlsplit(server).port)
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.address = f"http://127.0.0.1:{self.listener.getsockname()[1]}/xmla"
        self.requests, self.drop_after, self.drops_left = 0, None, None
        self.is_open = threading.Event()  # while it is not set, requests are kept back
        self.is_open.set()
        threading.Thread(target=self.accept, daemon=True).start()

    def close(self):
        self.is_open.set()
        self.listener.close()

    def drops(self):
        """True after more than `drop_after` requests, at most `drops_left` times."""
        if self.drop_after is None or self.requests <= self.drop_after or self.drops_left == 0:
            return False
        if self.drops_left is not None:
            self.drops_left -= 1
        return True

    def accept(self):
        while True:
            try:
                client, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self.hand_on, args=(client,), daemon=True).start()

    def hand_on(self, client):
        try:
            with client, socket.create_connection(self.target) as server:
                while True:
                    for source in select.select([client, server], [], [])[0]:
                        data = source.recv(65536)
                        self.requests += source is client and data.startswith(b"POST")
                        if not data or self.drops():
                            return
                        if source is client:
                            self.is_open.wait()
                        (server if source is client else client).sendall(data)
        except OSError:
            pass  # one of the two has gone
