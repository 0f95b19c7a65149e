"""A sandbox of a benchmark's own, with an account that has something to show."""

import json
import subprocess
import tempfile
import urllib.request


class Sandbox:
    """The service, on a free port, for as long as the block lasts; its state goes with it."""

    def __init__(self, program, *options):
        self._program = program
        self._options = options

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory()
        self._process = subprocess.Popen(
            [self._program, "--state", self._folder.name + "/state.sqlite", "--exit-with-parent", *self._options],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
        )
        self.url = json.loads(self._process.stdout.readline())["url"]
        return self

    def __exit__(self, *_):
        self._process.stdin.close()
        self._process.wait()
        self._folder.cleanup()

    def get(self, path, token=None):
        return self._ask(path, {}, None, token)

    def post(self, path, body, token=None):
        return self._ask(path, {"Content-Type": "application/json"}, json.dumps(body).encode(), token)

    def _ask(self, path, headers, body, token):
        access = {"X-Access-Token": token} if token else {}
        with urllib.request.urlopen(urllib.request.Request(self.url + path, body, headers | access)) as answer:
            return json.loads(answer.read() or b"null")

    def sign_in(self, phone="13800000000"):
        """Signs up by code, and gives the token."""
        number = {"phone": phone, "dialCode": "+86"}
        code = self.post("/api/app/auth/sms", number)["devCode"]
        return self.post("/api/app/auth/sms-login", number | {"code": code})["token"]

    def seed(self, token, conversations, messages=8):
        """Puts so many conversations into the account."""
        for number in range(conversations):
            self.post("/api/app/conversation/sync", {"conversation": conversation(number, messages)}, token)


def conversation(number, messages):
    """A conversation of questions and Markdown answers."""
    spoken = []
    for index in range(0, messages, 2):
        asked, answered = f"m{index}", f"m{index + 1}"
        spoken.append(
            {"id": asked, "role": "user", "text": f"第 {index} 个问题：周末该去哪儿走走？", "deliveryState": "submitted"}
        )
        spoken.append(
            {
                "id": answered,
                "role": "twin",
                "text": "可以去**江边**。\n\n- 上午人少\n- 带上水\n\n`走走` 就好，不用赶路。" * 2,
                "replyToUserMessageId": asked,
            }
        )
    return {
        "id": f"bench-{number}",
        "title": f"第 {number} 次聊天：周末的打算",
        "messages": spoken,
    }
