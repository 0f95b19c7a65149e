#!/usr/bin/env python3
"""A stand-in for Claude Code that starts at once: it does what the prompt says, and keeps a grandchild."""

import json
import subprocess
import sys


def say(**message):
    print(json.dumps(message), flush=True)


running = False


def begin(text):
    """What a turn does at once: its words decide."""
    global running
    running = True
    say(type="system", subtype="init", session_id="session", model="script", claude_code_version="2.1.329")
    if "ask" in text:
        tool = {"subtype": "can_use_tool", "tool_name": "Bash", "input": {"command": "make"}}
        say(type="control_request", request_id="q", request=tool)
    elif "wait" not in text:
        finish("hello")


def finish(words):
    global running
    if not running:
        return
    running = False
    if words:
        say(type="assistant", message={"content": [{"type": "text", "text": words}]})
    say(type="result", subtype="success", is_error=False, result=words, session_id="session", usage={"output_tokens": 1})


def main():
    if sys.argv[1:] == ["--version"]:
        print("0.0.0 (Claude Code)")
        return
    if sys.argv[1:] == ["auth", "status"]:
        print('{"loggedIn": true, "authMethod": "script"}')
        return
    subprocess.Popen(["sleep", "1000"], stdin=subprocess.DEVNULL, start_new_session=True)
    for line in sys.stdin:
        message = json.loads(line)
        if message["type"] == "user":
            begin(message["message"]["content"])
        elif message["type"] == "control_request":
            say(type="control_response", response={"subtype": "success", "request_id": message["request_id"]})
            finish("")
        elif message["type"] == "control_response":
            finish("told: " + message["response"]["response"]["behavior"])


if __name__ == "__main__":
    main()
