"""An agent's side of a recorded conversation.

    replay_agent.py RECORDING LOG [ARGUMENT...]     the arguments of the real tool, which are only noted

Each line of RECORDING is a step: {"in": 1} reads a line and notes it in LOG, {"out": VALUE} writes a line of JSON,
{"raw": TEXT, "times": N} writes bytes as they are, {"err": TEXT} writes to standard error, {"close": 1} closes
standard output, {"kill": SIGNAL} and {"exit": CODE} end it. Afterwards it waits for the end of its input.
"""

import json
import os
import sys

with open(sys.argv[2], "a", encoding="utf-8") as log:

    def note(line):
        log.write(line + "\n")
        log.flush()

    note(json.dumps(sys.argv[3:]))
    for line in open(sys.argv[1], encoding="utf-8"):
        step = json.loads(line)
        if "in" in step:
            received = sys.stdin.readline()
            if not received:
                sys.exit(0)
            note(received.rstrip("\n"))
        elif "out" in step:
            print(json.dumps(step["out"]), flush=True)
        elif "raw" in step:
            sys.stdout.write(step["raw"] * step.get("times", 1))
            sys.stdout.flush()
        elif "err" in step:
            print(step["err"], file=sys.stderr, flush=True)
        elif "close" in step:
            os.close(1)
        elif "kill" in step:
            os.kill(os.getpid(), step["kill"])
        elif "exit" in step:
            sys.exit(step["exit"])
    sys.stdin.read()
