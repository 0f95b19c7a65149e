#!/usr/bin/env python3
"""Starts a family: a child in the same group, one in a session of its own, and one below that whose parent has ended.
Says "ready" and the numbers of all four when they are there. All are deaf to a polite end when the first argument is
"deaf". A line of input is given back; "leave" ends the first of them alone.
"""
import os
import signal
import sys
import time

DEAF = sys.argv[1:] == ["deaf"]
reading, writing = os.pipe()


def live():
    if DEAF:
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
        signal.signal(signal.SIGHUP, signal.SIG_IGN)
    os.write(writing, b"%d\n" % os.getpid())


def stay():
    live()
    while True:
        time.sleep(1000)


live()
if os.fork() == 0:
    stay()
if os.fork() == 0:
    os.setsid()
    if os.fork() == 0:
        if os.fork() == 0:
            os.setsid()
            stay()
        os._exit(0)
    stay()
with os.fdopen(reading) as numbers:
    print("ready", *(numbers.readline().strip() for _ in range(4)), flush=True)
for line in sys.stdin:
    if line == "leave\n":
        sys.exit(7)
    print(line, end="", flush=True)
while DEAF:
    time.sleep(1000)
