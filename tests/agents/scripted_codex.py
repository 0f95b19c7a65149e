#!/usr/bin/env python3
"""A stand-in for Codex's application server that starts at once: it does what the prompt says, and keeps a grandchild."""

import json
import subprocess
import sys
import threading


def say(**message):
    print(json.dumps(message), flush=True)


COMMAND = "make \u001b[8mhidden"
ASK = "item/commandExecution/requestApproval"


running = False
turns = 0  # so far
crosses = False  # the turn that runs ends before it hears what is said next


def begin(text):
    """What a turn does at once: its words decide."""
    global running, crosses
    running = True
    if "die" in text:
        sys.exit(3)
    if "wait" in text:
        say(method="item/agentMessage/delta", params={"itemId": "m", "delta": "thinking"})
    elif "ask" in text:
        ask()
    elif "late" in text:
        finish("hello")
        on_word(ask)
    elif "tell" in text:
        finish("hello")
        on_word(tell)
    elif "cross" in text:
        crosses = True
        say(method="item/agentMessage/delta", params={"itemId": "m", "delta": "thinking"})
    elif "linger" in text:
        on_word(lambda: finish("at last"))
    elif "shout" in text:
        finish(text.upper())
    elif "moan" in text:
        finish("hello")
        say(method="error", params={"error": {"message": "alas"}, "willRetry": False})
    elif "change" in text:
        ask()
        on_word(change_mind)
    elif "print" in text:
        pieces = [str(number % 10) * 1024 for number in range(64)]
        say(method="item/started", params={"item": {"type": "commandExecution", "id": "p", "command": "yes"}})
        for piece in pieces:
            say(method="item/commandExecution/outputDelta", params={"itemId": "p", "delta": piece})
        done = {"type": "commandExecution", "id": "p", "status": "completed", "exitCode": 0}
        say(method="item/completed", params={"item": {**done, "aggregatedOutput": "".join(pieces) + "\nthe end"}})
        finish("hello")
    elif "flood" in text:
        for _ in range(500):
            say(method="item/agentMessage/delta", params={"itemId": "m", "delta": "x" * 1024})
        open("flooded", "w", encoding="utf-8").close()
    else:
        finish("hello")


def ask():
    say(method="item/started", params={"item": {"type": "commandExecution", "id": "c", "command": COMMAND}})
    say(id=0, method=ASK, params={"itemId": "c", "command": COMMAND, "reason": "because"})


def tell():
    for piece in ("late ", "wor", "ds"):
        say(method="item/agentMessage/delta", params={"itemId": "late", "delta": piece})
    say(method="item/completed", params={"item": {"type": "agentMessage", "id": "late", "text": "late words"}})


def change_mind():
    say(method="serverRequest/resolved", params={"threadId": "thread", "requestId": 0})
    finish("never mind")


def on_word(act):
    """Acts as soon as anything is written to the pipe "word" in the repository."""

    def wait():
        with open("word", encoding="utf-8") as word:
            word.read()
        act()

    threading.Thread(target=wait, daemon=True).start()


def finish(words, status="completed"):
    """Ends the turn; what is answered after it ends no other."""
    global running
    if words:
        say(method="item/completed", params={"item": {"type": "agentMessage", "id": "m", "text": words}})
    if running:
        running = False
        say(method="turn/completed", params={"turn": {"id": f"turn {turns}", "status": status}})


def start_turn(number, text):
    global turns, crosses
    if crosses:
        crosses = False
        finish("hello")
    turns += 0 if running else 1
    say(id=number, result={"turn": {"id": f"turn {turns}"}})
    begin(text)


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
        elif method == "turn/start" and "refuse" in message["params"]["input"][0]["text"]:
            say(id=number, error={"code": -32600, "message": "not now"})
        elif method == "turn/start":
            start_turn(number, message["params"]["input"][0]["text"])
        elif method == "turn/interrupt":
            say(id=number, result={})
            finish(None, "interrupted")
        elif method is None:
            finish("told: " + message["result"]["decision"])
        elif number is not None:
            say(id=number, result={})


if __name__ == "__main__":
    main()
