"""What the window talks to while its chat is measured: one long conversation, and a reply that grows."""

import json
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

LONG = 10_000
PARAGRAPH = "沿着堤岸往东走，先过一座桥，再走**两公里**，就能看见 `码头`。\n\n- 早上人少\n- 带上水\n\n"
PIECES = ["沿着", "堤岸", "走，", "**慢**", "一点", "。"]
PAUSE = 10  # seconds for what comes first to be laid out


def conversation():
    """So many messages, short and long, every tenth with code."""
    messages = []
    for index in range(0, LONG, 2):
        code = "\n\n```cpp\nint main() {\n    return 0;\n}\n```" if index % 20 == 0 else ""
        asked = f"m{index}"
        messages.append({"id": asked, "role": "user", "text": f"第 {index} 个问题：周末该去哪儿走走？", "deliveryState": "submitted"})
        messages.append(
            {
                "id": f"m{index + 1}",
                "role": "twin",
                "text": PARAGRAPH * (1 + index % 3) + code,
                "replyToUserMessageId": asked,
            }
        )
    return {"conversation": {"id": "long", "title": "很长的一段", "messages": messages, "revision": 1}}


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    long = json.dumps(conversation()).encode()

    def log_message(self, *_):
        pass

    def give(self, body, status=200):
        body = body if isinstance(body, bytes) else json.dumps(body).encode()
        self.send_response(status)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        if self.path == "/api/app/auth/me":
            self.give({"userInfo": {"id": "bench", "handle": "bench"}})
        elif self.path == "/api/app/conversations":
            titles = [{"id": f"c{number}", "title": f"第 {number} 次聊天：周末的打算"} for number in range(50)]
            self.give({"conversations": titles})
        elif self.path.startswith("/api/app/conversation?"):
            self.give(self.long)
        elif self.path == "/api/app/capabilities":
            self.give({"platform": "mac", "version": 1, "features": []})
        else:
            self.give({"error": "not_found"}, 404)

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        if self.path == "/api/relay/chat/stream":
            self.stream(json.loads(body))
        elif self.path == "/api/app/conversation/sync":
            self.give({"ok": True, "revision": 2})
        else:
            self.give({})

    def stream(self, asked):
        """A reply that has as many KB as was asked for, and goes on by 100 deltas a second until nobody listens."""
        size = int(asked["messages"][-1]["content"]) * 1024
        text = PARAGRAPH * (size // len(PARAGRAPH))
        self.send_response(200)
        self.send_header("Content-Type", "text/event-stream")
        self.send_header("Connection", "close")
        self.end_headers()
        self.close_connection = True
        try:
            self.delta(text)
            time.sleep(PAUSE)
            due = time.monotonic()
            for number in range(100_000):
                self.delta("\n\n" if number % 60 == 59 else PIECES[number % len(PIECES)])
                due += 0.01
                time.sleep(max(0, due - time.monotonic()))
        except OSError:
            pass

    def delta(self, text):
        self.wfile.write(b"data: " + json.dumps({"delta": text}, ensure_ascii=False).encode() + b"\n\n")
        self.wfile.flush()


class WindowService:
    """The service on a free port, for as long as the block lasts."""

    def __enter__(self):
        self._server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        threading.Thread(target=self._server.serve_forever, daemon=True).start()
        self.url = f"http://127.0.0.1:{self._server.server_port}"
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()
