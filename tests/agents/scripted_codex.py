#!/usr/bin/env python3
"""A stand-in for Codex's application server that starts at once: it does what the prompt says, and keeps a grandchild."""

import json
import subprocess
import sys


def say(**message):
    print(json.dumps(message), flush=True)


COMMAND = "make \u001b[8mhidden"
ASK = "item/commandExecution/requestApproval"


def begin(text):
    """What a turn does at once: its words decide."""
    if "die" in text:
        sys.exit(3)
    if "wait" in text:
        say(method="item/agentMessage/delta", params={"itemId": "m", "delta": "thinking"})
    elif "ask" in text:
        say(method="item/started", params={"item": {"type": "commandExecution", "id": "c", "command": COMMAND}})
        say(id=0, method=ASK, params={"itemId": "c", "command": COMMAND, "reason": "because"})
    else:
        finish("hello")


def finish(words, status="completed"):
    if words:
        say(method="item/completed", params={"item": {"type": "agentMessage", "id": "m", "text": words}})
    say(method="turn/completed", params={"turn": {"id": "turn", "status": status}})


def main():
    if sys.argv[1:] == ["--version"]:
        print("codex-cli 0.0.0")
        return
    if sys.argv[1:2] == ["login"]:
        print("Logged in", file=sys.stderr)
        return
    subprocess.Popen(["sleep", "1000"], stdin=subprocess.DEVNULL, start_new_session=True)
    for line in sys.stdin:
        message = json.loads(line)
        method, number = message.get("method"), message.get("id")
        if method == "account/read":
            say(id=number, result={"account": {"type": "apiKey"}, "requiresOpenaiAuth": True})
        elif method in ("thread/start", "thread/resume"):
            say(id=number, result={"thread": {"id": "thread", "model": "script"}})
        elif method == "turn/start":
            say(id=number, result={"turn": {"id": "turn"}})
            begin(message["params"]["input"][0]["text"])
        elif method == "turn/interrupt":
            say(id=number, result={})
            finish(None, "interrupted")
        elif method is None:
            finish("told: " + message["result"]["decision"])
        elif number is not None:
            say(id=number, result={})


if __name__ == "__main__":
    main()
