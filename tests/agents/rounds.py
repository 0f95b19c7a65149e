#!/usr/bin/env python3
"""Many short sessions with scripts in place of the agents: start, talk, stop, and start, talk, kill -9 of the application.

usage: rounds.py LUMENPAIR [ROUNDS]      of each kind; the scripts' own children, in sessions of their own, must go as well
"""

import concurrent.futures
import os
import signal
import sys
import tempfile

import flows


def play(engine, repo, kill):
    session = flows.Session(engine, repo)
    try:
        session.send("hello")
        events = session.turn()
        flows.check(flows.said(events) == "hello", events)
        if kill:
            session.process.send_signal(signal.SIGKILL)
            session.process.wait()
            session.nothing_left()
        else:
            session.close()
    finally:
        session.process.kill()


def play_all(rounds, repo, kill):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        engines = [flows.ENGINES[number % len(flows.ENGINES)] for number in range(rounds)]
        sessions = [pool.submit(play, engine, repo, kill) for engine in engines]
        try:
            for session in concurrent.futures.as_completed(sessions):
                session.result()
        finally:
            pool.shutdown(cancel_futures=True)
    print(f"{rounds} rounds of start, talk, {'kill -9' if kill else 'stop'}: nothing left", flush=True)


def main():
    flows.lumenpair = os.path.abspath(sys.argv[1])
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 500
    here = os.path.dirname(os.path.abspath(__file__))
    with tempfile.TemporaryDirectory() as folder:
        for engine in flows.ENGINES:
            os.symlink(os.path.join(here, f"scripted_{engine}.py"), os.path.join(folder, engine))
        os.environ.update(PATH=folder + os.pathsep + os.environ["PATH"], HOME=folder, SHELL="/bin/sh")
        for kill in (False, True):
            play_all(rounds, folder, kill)


if __name__ == "__main__":
    main()
