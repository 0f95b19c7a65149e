#!/usr/bin/env python3
"""Many short sessions with a script in place of Codex: start, talk, stop, and start, talk, kill -9 of the application.

usage: rounds.py LUMENPAIR [ROUNDS]      of each kind; the script's own child, in a session of its own, must go as well
"""

import os
import signal
import sys
import tempfile

import flows


def play(repo, kill):
    session = flows.Session("codex", repo)
    session.send("hello")
    events = session.turn()
    flows.check(flows.said(events) == "hello", events)
    if kill:
        session.process.send_signal(signal.SIGKILL)
        session.process.wait()
        session.nothing_left()
    else:
        session.close()


def main():
    flows.lumenpair = os.path.abspath(sys.argv[1])
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 500
    here = os.path.dirname(os.path.abspath(__file__))
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(os.path.join(here, "scripted_codex.py"), os.path.join(folder, "codex"))
        os.environ["PATH"] = folder + os.pathsep + os.environ["PATH"]
        os.environ["HOME"] = folder
        for kill in (False, True):
            for _ in range(rounds):
                play(folder, kill)
            print(f"{rounds} rounds of start, talk, {'kill -9' if kill else 'stop'}: nothing left", flush=True)


if __name__ == "__main__":
    main()
