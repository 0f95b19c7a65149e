"""The figures of children: their lines, and that none of them is left. Called by figures.py."""

import os
import re
import shutil
import subprocess
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
FAMILY = HERE.parent / "tests" / "data" / "dev" / "family.py"
LINES = 1_000_000
LENGTH = 200
ROUNDS = int(os.environ.get("LMP_BENCH_CHILDREN", "500"))


def readers(figures, count, length):
    producer = [figures.program("bench_line_producer"), str(count), str(length)]
    commands = {
        "ours": [figures.program("bench_child_lines"), "read", *producer],
        "qprocess": [figures.program("bench_qt_child_lines"), *producer],
    }
    if node := shutil.which("node"):
        commands["node"] = [node, str(HERE / "children" / "child_lines.mjs"), *producer]
    return commands


def show(figures, what, medians, count):
    sums = {one["sum"] for one in medians.values()}
    if len(sums) != 1:
        raise SystemExit(f"the readers did not read the same: {sums}")
    figures.note(what + ": " + ", ".join(f"{name} {count / one['ms'] / 1e3:.2f} M/s" for name, one in medians.items()))


def lines(figures, alternate):
    commands = readers(figures, LINES, LENGTH)
    if taskset := shutil.which("taskset"):
        core = str(min(os.sched_getaffinity(0)))
        pinned = alternate({name: [taskset, "-c", core, *command] for name, command in commands.items()})
        show(figures, "pinned to one core", pinned, LINES)
        ratio = pinned["qprocess"]["ms"] / pinned["ours"]["ms"]
        figures.hold("lines pinned", f"{ratio:.2f} x QProcess readAll (at least 0.8)", ratio >= 0.8)
    else:
        figures.note("skipped: pinned to one core, for want of taskset")
    free = alternate(commands)
    show(figures, "free", free, LINES)
    if "node" in free:
        ratio = free["node"]["ms"] / free["ours"]["ms"]
        figures.hold("lines node", f"{ratio:.2f} x node readline (at least 1.5)", ratio >= 1.5)
    else:
        figures.note("skipped: beside node, which is not installed")


def long_line(figures, alternate):
    sizes = (10_000_000, 20_000_000, 40_000_000)
    ours = alternate({str(size): readers(figures, 1, size)["ours"] for size in sizes})
    times = [ours[str(size)]["ms"] for size in sizes]
    figures.note(", ".join(f"{size // 1_000_000} MB {ms:.1f} ms" for size, ms in zip(sizes, times)))
    ratio = times[2] / times[0]
    figures.hold("long line", f"40 MB takes {ratio:.1f} x the time of 10 MB (at most 6)", ratio <= 6)


def stalled(figures, alternate):
    command = [figures.program("bench_child_lines"), "stall", figures.program("bench_line_producer"), "0", str(LENGTH)]
    one = alternate({"ours": command}, 3)["ours"]
    growth = one["growth_kb"] / 1024
    good = growth < 16 and one["flows"] == 1 and one["waiting_kb"] > 0
    figures.hold(
        "stalled", f"grows by {growth:.1f} MB (under 16), {one['waiting_kb'] / 1024:.1f} MB of lines waited", good
    )


def alive(pid):
    """Whether it runs; a dead one that its parent has not taken notice of does not."""
    try:
        stat = Path(f"/proc/{pid}/stat").read_text()
    except OSError:
        return False
    return stat.rsplit(")", 1)[1].split()[0] != "Z"


class Host:
    """Our program with children of its own, each the head of a family of four."""

    def __init__(self, figures, count, *arguments):
        self.process = subprocess.Popen(
            [figures.program("bench_child_host"), str(count), str(FAMILY), *arguments],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
        )
        self.pids = [int(pid) for _ in range(count) for pid in self.line().split()[1:]]
        if len(self.pids) != 4 * count or not all(map(alive, self.pids)):
            raise SystemExit("a family did not start")

    def line(self):
        return self.process.stdout.readline().strip()

    def say(self, line):
        print(line, file=self.process.stdin, flush=True)

    def talk(self, count=1):
        self.say("hello")
        if any(self.line() != "hello" for _ in range(count)):
            raise SystemExit("a child did not answer")

    def quit(self):
        """Returns how long it took to quit, in ms."""
        self.say("quit")
        took = float(re.search(r"quit_ms=(\d+)", self.line())[1])
        self.process.wait()
        return took

    def kill(self):
        """Returns how long anything lived after it, in ms."""
        self.process.kill()
        killed = time.monotonic()
        self.process.wait()
        while self.left() and time.monotonic() - killed < 5:
            time.sleep(0.002)
        return (time.monotonic() - killed) * 1e3

    def left(self):
        return [pid for pid in self.pids if alive(pid)]


def quitting(figures):
    """Quitting with children that are deaf to a polite end, their families included"""
    host = Host(figures, 8, "deaf")
    took = host.quit()
    good = took < 4000 and not host.left()
    figures.hold("quitting", f"{took:.0f} ms with 8 deaf children (under 4,000), {len(host.left())} of 32 left", good)
    host = Host(figures, 8, "deaf")
    took = host.kill()
    good = took < 2000 and not host.left()
    figures.hold("killed", f"32 deaf processes outlive the program by {took:.0f} ms (under 2,000)", good)


def rounds(figures):
    left = []
    longest = 0.0
    for number in range(ROUNDS):
        for end in (Host.quit, Host.kill):
            host = Host(figures, 1)
            host.talk()
            took = end(host)
            left += host.left()
            if end is Host.kill:
                longest = max(longest, took)
    figures.note(f"the longest that anything outlived a killed program: {longest:.0f} ms")
    figures.hold("rounds", f"{len(left)} processes left after {ROUNDS} rounds of stop and of kill -9", not left)
    figures.hold("rounds time", f"{longest:.0f} ms at most (under 2,000)", longest < 2000)
