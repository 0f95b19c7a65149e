#!/usr/bin/env python3
"""Takes both agents through whole sessions with `lumenpair dev --jsonl`. Run by run.sh, under with_agents.py.

usage: flows.py LUMENPAIR [NAME...]    NAME: only the flows whose name contains it
"""

import json
import os
import queue
import signal
import subprocess
import sys
import tempfile
import threading
import time
import uuid

TIMEOUT = 60
ENGINES = ("claude", "codex")
lumenpair = ""


class Failure(Exception):
    pass


def check(condition, *what):
    if not condition:
        raise Failure(*what)


def processes(mark):
    """The processes that carry the mark in their environment, with their command lines."""
    found = {}
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/environ", "rb") as file:
                if mark.encode() not in file.read():
                    continue
            with open(f"/proc/{pid}/cmdline", "rb") as file:
                found[int(pid)] = file.read().replace(b"\0", b" ").decode(errors="replace").strip()
        except OSError:
            pass
    return found


def wait_until(condition, seconds):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.02)
    return condition()


class Session:
    """One `lumenpair dev --jsonl`, in a repository, with an environment that marks all it starts."""

    def __init__(self, engine, repo, *arguments):
        self.engine = engine
        self.mark = "AGENT_FLOW=" + uuid.uuid4().hex
        key, _, value = self.mark.partition("=")
        self.process = subprocess.Popen(
            [lumenpair, "dev", "--engine", engine, "--repo", repo, "--jsonl", *arguments],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            env={**os.environ, key: value},
        )
        self.events = []
        self.lines = queue.Queue()
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        for line in self.process.stdout:
            self.lines.put(line)
        self.lines.put(None)

    def write(self, **command):
        self.process.stdin.write(json.dumps(command) + "\n")
        self.process.stdin.flush()

    def send(self, *text):
        self.write(send="\n".join(text))

    def respond(self, request, decision, **more):
        self.write(respond={"requestId": request["id"], "decision": decision, **more})

    def next(self):
        try:
            line = self.lines.get(timeout=TIMEOUT)
        except queue.Empty:
            raise Failure("nothing came", self.events[-5:]) from None
        if line is None:
            raise Failure("the stream ended", self.events[-5:], self.process.stderr.read()[-2000:])
        self.events.append(json.loads(line))
        return self.events[-1]

    def until(self, *types, **fields):
        """The next event of one of these types that has these fields."""
        while True:
            event = self.next()
            if event["type"] in types and all(event.get(key) == value for key, value in fields.items()):
                return event

    def turn(self):
        """The events up to the end of the turn."""
        first = len(self.events)
        ends = ("turnCompleted",) if self.engine == "claude" else ("turnCompleted", "interrupted", "failed")
        self.until(*ends)
        return self.events[first:]

    def tool(self):
        """The agent's own process."""
        for pid, command in processes(self.mark).items():
            program = os.path.basename(command.split(" ")[0])
            if program in (self.engine, self.engine + ".exe"):
                return pid
        raise Failure("no tool", processes(self.mark))

    def exit_code(self):
        while (line := self.lines.get(timeout=TIMEOUT)) is not None:
            self.events.append(json.loads(line))
        return self.process.wait(TIMEOUT)

    def nothing_left(self):
        """Everything that was started is gone, however it ended."""
        left = lambda: [command for pid, command in processes(self.mark).items() if pid != self.process.pid]
        check(wait_until(lambda: not left(), 2), "left behind", left())

    def close(self, code=0):
        self.process.stdin.close()
        got = self.exit_code()
        check(got == code, "exit code", got, self.events[-3:], self.process.stderr.read()[-2000:])
        self.nothing_left()


def of(events, kind):
    return [event for event in events if event["type"] == kind]


def said(events):
    return "\n".join(event["text"] for event in of(events, "assistantText"))


def run(engine, command):
    """The directive for a command that must be asked for: Codex asks only for what its sandbox would refuse."""
    return f"RUN: {'!' if engine == 'codex' else ''}{command}"


def exists(repo, name):
    return os.path.exists(os.path.join(repo, name))


# The flows. Each takes the engine and a repository of its own.


def plain(engine, repo):
    session = Session(engine, repo)
    session.send("Hello")
    events = session.turn()
    check(events[0]["type"] == "sessionStarted" and events[0]["engineSessionId"], events)
    check(said(events) == "Echo: Hello", events)
    usage = events[-1]["usage"]
    check(usage["inputTokens"] > 0 and usage["outputTokens"] > 0 and "durationMs" in usage, usage)
    session.close()


def allow(engine, repo):
    session = Session(engine, repo)
    session.send(run(engine, "echo hello > made.txt; cat made.txt"))
    asked = session.until("permissionRequest")
    check(asked["summary"] == "echo hello > made.txt; cat made.txt", asked)
    check(not exists(repo, "made.txt"), "it ran before it was allowed")
    session.respond(asked, "allowOnce")
    events = session.turn()
    results = of(events, "toolResult")
    check(len(results) == 1 and not results[0]["isError"] and "hello" in results[0]["output"], events)
    check(exists(repo, "made.txt"), "it did not run")
    session.close()


def deny(engine, repo):
    session = Session(engine, repo)
    session.send(run(engine, "touch made.txt"))
    session.respond(session.until("permissionRequest"), "deny", reason="先写测试")
    events = session.turn()
    check(of(events, "toolResult")[0]["isError"] and events[-1]["type"] == "turnCompleted", events)
    check(not exists(repo, "made.txt"), "it ran")
    session.send("Next")
    if engine == "codex":
        check(said(session.turn()) == "Echo: 上一次我拒绝了你的操作，原因：先写测试\nNext", session.events[-3:])
        session.send("Then")
        check(said(session.turn()) == "Echo: Then", session.events[-3:])
    else:
        check("先写测试" in of(events, "toolResult")[0]["output"], events)
        check(said(session.turn()) == "Echo: Next", session.events[-3:])
    session.close()


def allow_session(engine, repo):
    session = Session(engine, repo)
    session.send(run(engine, "touch one.txt"))
    session.respond(session.until("permissionRequest"), "allowSession")
    session.turn()
    session.send(run(engine, "touch two.txt"))
    check(not of(session.turn(), "permissionRequest"), "asked again")
    check(exists(repo, "two.txt"), "it did not run")
    session.send(run(engine, "mkdir three"))
    session.respond(session.until("permissionRequest"), "deny")
    session.turn()
    check(not exists(repo, "three"), "another command was allowed too")
    session.close()


def interrupt_streaming(engine, repo):
    session = Session(engine, repo)
    session.send("SLOW: 300 0.1")
    if engine == "codex":
        session.until("assistantDelta")
    else:
        session.until("sessionStarted")  # it shows no text before a whole block is there
    session.write(interrupt=True)
    session.until("interrupted")
    if engine == "claude":
        session.until("turnCompleted")
    check(not of(session.events, "failed"), session.events)
    session.send("After")
    check(said(session.turn()) == "Echo: After", session.events[-4:])
    session.close()


def interrupt_asked(engine, repo):
    session = Session(engine, repo)
    session.send(run(engine, "touch made.txt"))
    asked = session.until("permissionRequest")
    session.write(interrupt=True)
    session.until("interrupted")
    if engine == "claude":
        session.until("turnCompleted")
    session.respond(asked, "allowOnce")
    check("error" == session.until("error")["type"], "an answer to nothing was taken")
    calls, results = of(session.events, "toolCall"), of(session.events, "toolResult")
    check({call["id"] for call in calls} == {result["id"] for result in results}, session.events)
    check(not of(session.events, "failed"), session.events)
    session.send("After")
    check(said(session.turn()) == "Echo: After", session.events[-4:])
    check(not exists(repo, "made.txt"), "it ran")
    session.close()


def error_turn(engine, repo):
    session = Session(engine, repo)
    session.send("FAIL: 500")
    events = session.turn()
    check(len(of(events, "failed")) == 1 and of(events, "failed")[0]["reason"], events)
    check(not of(events, "assistantText"), "the error is shown as the agent's words", events)
    session.send("After")
    check(said(session.turn()) == "Echo: After", session.events[-4:])
    check(len(of(session.events, "failed")) == 1, session.events)
    session.close()


def resume(engine, repo):
    first = Session(engine, repo)
    first.send("Remember me")
    first.turn()
    first.close()
    name = of(first.events, "sessionStarted")[0]["engineSessionId"]
    second = Session(engine, repo, "--resume", name)
    second.send("Again")
    events = second.turn()
    check(of(second.events, "sessionStarted")[0]["engineSessionId"] == name, second.events)
    check(said(events) == "Echo: Again", events)
    second.close()
    unknown = Session(engine, repo, "--resume", str(uuid.uuid4()), "Hi")
    check(unknown.exit_code() == 1, "an unknown session was resumed")
    unknown.nothing_left()


def death(engine, repo):
    session = Session(engine, repo)
    session.send("SLOW: 300 0.1")
    session.until("sessionStarted" if engine == "claude" else "assistantDelta")
    os.kill(session.tool(), signal.SIGKILL)
    failed = session.until("failed")
    check("退出" in failed["reason"], failed)
    check(session.exit_code() == 1, "exit code")
    session.nothing_left()


def files(engine, repo):
    session = Session(engine, repo, "--mode", "acceptEdits")
    session.send("WRITE: a.txt | one\\ntwo\\n", "EDIT: a.txt | two | three")
    events = session.turn()
    check(not of(events, "permissionRequest"), events)
    changed = [(os.path.basename(change["path"]), change["kind"]) for change in of(events, "fileChanged")]
    check(changed == [("a.txt", "create"), ("a.txt", "modify")], events)
    with open(os.path.join(repo, "a.txt"), encoding="utf-8") as file:
        check(file.read() == "one\nthree\n", "the file is not as it was written")
    session.close()


def read_only(engine, repo):
    session = Session(engine, repo, "--mode", "readOnly")
    session.send(run(engine, "touch made.txt"))
    events = session.turn()
    check(any("只读档位" in notice["text"] for notice in of(events, "notice")), events)
    check(not of(events, "permissionRequest") and not exists(repo, "made.txt"), events)
    session.write(setMode="acceptEdits")
    session.send(run(engine, "touch made.txt"))
    session.respond(session.until("permissionRequest"), "allowOnce")
    session.turn()
    check(exists(repo, "made.txt"), "the new mode was not taken")
    session.close()


def full(engine, repo):
    session = Session(engine, repo, "--mode", "full")
    session.send("RUN: touch made.txt")
    check(not of(session.turn(), "permissionRequest") and exists(repo, "made.txt"), session.events)
    if engine == "claude":  # Codex asks for nothing at all then
        session.send("RUN: git push origin main")
        session.respond(session.until("permissionRequest"), "deny")
        session.turn()
    session.close()


def stop(engine, repo):
    session = Session(engine, repo)
    session.send("SLOW: 300 0.1")
    session.until("sessionStarted")
    session.write(stop=True)
    check(session.exit_code() == 130, "exit code")
    session.nothing_left()


def killed(engine, repo):
    """The application is killed; neither the tool nor what it has started survives it."""
    session = Session(engine, repo, "--allow", "once")
    session.send(run(engine, "tail -f /dev/null"))
    session.until("toolCall")
    running = lambda: any(command == "tail -f /dev/null" for command in processes(session.mark).values())
    check(wait_until(running, 20), "no command")
    session.process.kill()
    session.process.wait()
    session.nothing_left()


def exit_codes(engine, repo):
    def code(*arguments, during=None):
        session = Session(engine, repo, *arguments)
        if during:
            during(session)
        session.process.stdin.close()
        got = session.exit_code()
        session.nothing_left()
        return got

    def interrupt(session):
        session.until("sessionStarted")
        if engine == "codex":  # the other shows no text before a whole block is there
            session.until("assistantDelta")
        session.process.send_signal(signal.SIGINT)

    check(code("Hello") == 0, "completed")
    check(code("FAIL: 500") == 1, "failed")
    check(code("SLOW: 300 0.1", during=interrupt) == 130, "interrupted")
    check(code(run(engine, "touch no.txt")) == 0 and not exists(repo, "no.txt"), "denied with nobody to ask")
    check(code("--allow", "once", run(engine, "touch yes.txt")) == 0 and exists(repo, "yes.txt"), "--allow once")


def two_at_once(engine, repo):
    """What is said during a turn is heard, though the input ends before it is; also as the turn ends."""
    for pieces in (1, 12, 13, 14, 15) if engine == "codex" else (0,):
        session = Session(engine, repo)
        session.send("SLOW: 15 0.05")
        session.until("sessionStarted")
        for _ in range(pieces):
            session.until("assistantDelta")
        session.send("After")
        session.close()
        check("Echo: After" in said(session.events), pieces, session.events[-5:])


def nonsense(engine, repo):
    session = Session(engine, repo)
    for line in ("not json", "{}", '{"send": 1}', '{"respond": {"requestId": "x", "decision": "maybe"}}', '{"stop": false}'):
        session.process.stdin.write(line + "\n")
        session.process.stdin.flush()
        session.until("error")
    session.send("Still there?")
    check(said(session.turn()) == "Echo: Still there?", session.events[-4:])
    session.close()


FLOWS = (plain, allow, deny, allow_session, interrupt_streaming, interrupt_asked, error_turn, resume, death, files,
         read_only, full, stop, killed, exit_codes, two_at_once, nonsense)


def main():
    global lumenpair
    lumenpair = os.path.abspath(sys.argv[1])
    wanted = sys.argv[2:]
    passed, failed = 0, 0
    for flow in FLOWS:
        for engine in ENGINES:
            name = f"{engine} {flow.__name__}"
            if wanted and not any(word in name for word in wanted):
                continue
            began = time.monotonic()
            with tempfile.TemporaryDirectory() as folder:
                repo = os.path.realpath(folder)
                subprocess.run(["git", "init", "-q", repo], check=True)
                try:
                    flow(engine, repo)
                    passed += 1
                    print(f"ok      {name} ({time.monotonic() - began:.1f} s)", flush=True)
                except (Failure, AssertionError, subprocess.TimeoutExpired, queue.Empty) as error:
                    failed += 1
                    print(f"FAILED  {name}: {error!r}", flush=True)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
