#!/usr/bin/env python3
"""Measures our programs beside their peers and prints each figure as a ratio.

    figures.py FOLDER [FIGURE...]     FOLDER holds the benchmark programs; FIGURE is one of the names below

Only ratios count: the programs of a figure run in turns, so that whatever else the machine does falls on all of them.
Each line says what is measured, the medians, the ratio and what it must hold; the exit status is 1 when one does not.
"""

import json
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import agent_figures
import child_figures
import window_figures

HERE = Path(__file__).resolve().parent
ROUNDS = int(os.environ.get("LMP_BENCH_ROUNDS", "7"))
EVENTS = 200_000


class Figures:
    def __init__(self, programs):
        self.programs = programs
        self.missed = []

    def program(self, name):
        return str(self.programs / name)

    def hold(self, name, text, good):
        """Prints one figure and remembers whether it holds."""
        print(f"  {'holds ' if good else 'MISSED'} {name}: {text}", flush=True)
        if not good:
            self.missed.append(name)

    def note(self, text):
        print(f"         {text}", flush=True)


class EventServer:
    """The other side of the wire, for as long as the block lasts."""

    def __init__(self, figures):
        self.process = subprocess.Popen([figures.program("bench_event_server")], stdout=subprocess.PIPE, text=True)
        self.port = int(self.process.stdout.readline())

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()

    def url(self, query):
        return f"http://127.0.0.1:{self.port}/?{query}"


def run(command):
    """One run. Returns the "name=value" words it printed, and "wall_ms"."""
    started = time.perf_counter()
    done = subprocess.run(command, capture_output=True, stdin=subprocess.DEVNULL, text=True)
    if done.returncode:
        raise SystemExit(f"{' '.join(command)}\n{done.stdout}{done.stderr}failed with {done.returncode}")
    words = {name: float(value) for name, value in re.findall(r"(\w+)=([\d.]+)", done.stdout)}
    return words | {"wall_ms": (time.perf_counter() - started) * 1e3}


def alternate(commands, rounds=ROUNDS):
    """Runs all commands in turns, after a round that does not count. Returns the median of every word of each."""
    runs = {label: [] for label in commands}
    for number in range(rounds + 1):
        for label, command in commands.items():
            words = run(command)
            if number > 0:
                runs[label].append(words)
    return {
        label: {word: statistics.median(one[word] for one in many) for word in many[0]} for label, many in runs.items()
    }


def event_readers(figures, url, mode="chat"):
    readers = {
        "ours": [figures.program("bench_event_reader"), url, mode],
        "qt_json": [figures.program("bench_qt_event_reader"), url, "json"],
    }
    if mode == "chat":
        readers["qt_count"] = [figures.program("bench_qt_event_reader"), url, "count"]
        readers["python"] = [sys.executable, str(HERE / "event_reader.py"), url]
    if node := shutil.which("node"):
        readers["node"] = [node, str(HERE / "event_reader.mjs"), url]
    return readers


def show_speeds(figures, medians):
    figures.note(", ".join(f"{label} {EVENTS / one['ms']:,.0f} k/s" for label, one in medians.items()))


def same_work(medians):
    texts = {label: one["text"] for label, one in medians.items() if label != "qt_count"}
    if len(set(texts.values())) != 1:
        raise SystemExit(f"the readers did not read the same: {texts}")


def close(figures):
    """200,000 deltas into typed frames, the body to the end of the connection"""
    with EventServer(figures) as server:
        medians = alternate(event_readers(figures, server.url(f"n={EVENTS}&mode=close")))
    same_work(medians)
    show_speeds(figures, medians)
    ratio = medians["qt_json"]["ms"] / medians["ours"]["ms"]
    figures.hold("close", f"{ratio:.2f} x the QJsonDocument reader (at least 1.0)", ratio >= 1.0)


def chunk(figures):
    """The same, each event an HTTP chunk of its own"""
    with EventServer(figures) as server:
        medians = alternate(event_readers(figures, server.url(f"n={EVENTS}&mode=chunk")))
    same_work(medians)
    show_speeds(figures, medians)
    ratio = medians["qt_count"]["ms"] / medians["ours"]["ms"]
    figures.hold("chunk", f"{ratio:.2f} x counting bytes only (at least 0.9)", ratio >= 0.9)


def latency(figures):
    """One event each 2 ms, from the server's write to the typed frame"""
    with EventServer(figures) as server:
        medians = alternate(event_readers(figures, server.url("n=1000&pace=2000"), "timed"))
    for label, one in medians.items():
        figures.note(f"{label}: p50 {one['p50_us']:.0f} us, p99 {one['p99_us']:.0f} us, CPU {one['cpu_us']:.0f} us")
    ours = medians["ours"]
    ratio = ours["p50_us"] / medians["qt_json"]["p50_us"]
    figures.hold("latency p50", f"{ratio:.2f} x Qt (at most 1.3)", ratio <= 1.3)
    figures.hold("latency p99", f"{ours['p99_us']:.0f} us (under 1,000)", ours["p99_us"] < 1000)
    figures.hold("latency CPU", f"{ours['cpu_us']:.0f} us an event (at most 100)", ours["cpu_us"] <= 100)


def memory(figures):
    """A stream of 500 MB"""
    events = 7_200_000
    with EventServer(figures) as server:
        one = run([figures.program("bench_event_reader"), server.url(f"n={events}&mode=close"), "drop"])
    body = one["bytes"] + one["events"] * len("data: \n\n")
    figures.note(f"{body / 1e6:.0f} MB in {one['ms'] / 1e3:.1f} s, {one['events'] / one['ms']:,.0f} k events/s")
    growth = one["growth_kb"] / 1024
    figures.hold("memory", f"grows by {growth:.1f} MB (under 20)", growth < 20 and body >= 500e6)


def benchmarks(figures, program):
    """Runs a program of benchmarks in turns. Returns the median of each, by its name."""
    done = subprocess.run(
        [
            figures.program(program),
            "--benchmark_enable_random_interleaving=true",
            f"--benchmark_repetitions={ROUNDS}",
            "--benchmark_min_time=0.3",
            "--benchmark_format=json",
        ],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        text=True,
        check=True,
    )
    medians = {}
    for one in json.loads(done.stdout)["benchmarks"]:
        if one.get("error_occurred"):
            raise SystemExit(f"{one['name']}: {one['error_message']}")
        if one.get("aggregate_name") == "median":
            medians[one["run_name"].split("/iterations")[0].removesuffix("/manual_time")] = one
    return medians


def records(figures):
    """A conversation of 20,000 messages into records, and back"""
    speeds = {}
    for name, one in benchmarks(figures, "bench_json").items():
        speeds[name.removeprefix("reading/")] = one["bytes_per_second"] / 1e6
    figures.note(", ".join(f"{label} {speed:.0f} MB/s" for label, speed in speeds.items()))
    by_hand = speeds["ours"] / speeds["by_hand"]
    qt = speeds["ours"] / speeds["qt"]
    writing = speeds["writing"] / speeds["ours"]
    figures.hold("records by hand", f"{by_hand:.2f} x Boost.JSON by hand (at least 0.85)", by_hand >= 0.85)
    figures.hold("records Qt", f"{qt:.2f} x QJsonDocument (at least 1.8)", qt >= 1.8)
    figures.hold("records writing", f"{writing:.2f} x reading (at least 1.0)", writing >= 1.0)


def chat(figures):
    """The window's chat without the window: opening a conversation, and a piece of a long reply"""
    us = {name: one["real_time"] for name, one in benchmarks(figures, "bench_chat_model").items()}
    figures.note(", ".join(f"{name} {time:.1f} us" for name, time in us.items()))
    opening = us["opening/10000"] / us["opening/100"]
    growing = us["growing/100000"] / us["growing/10000"]
    figures.hold("chat opening", f"10,000 messages {opening:.2f} x 100 of them (at most 1.5)", opening <= 1.5)
    figures.hold("chat growing", f"a piece at 100 KB {growing:.2f} x one at 10 KB (at most 1.3)", growing <= 1.3)


def memories(figures):
    """A key in the field that finds memories, in a ledger of 10,000"""
    us = {name: one["real_time"] for name, one in benchmarks(figures, "bench_memories").items()}
    figures.note(", ".join(f"{name} {time:,.0f} us" for name, time in us.items()))
    ratio = us["proxy"] / us["ours"]
    figures.hold("memories", f"{ratio:.2f} x a QSortFilterProxyModel that knows no widths (at least 1.0)", ratio >= 1.0)
    figures.hold("memories key", f"{us['ours'] / 1e3:.2f} ms (under 16)", us["ours"] < 16_000)


def markdown(figures):
    """An update of a growing reply of 100 KB beside one of 10 KB, as rows and as painted lines"""
    program = figures.program("bench_markdown")
    for what in ("parse", "draw"):
        medians = alternate({size: [program, what, size] for size in ("10", "100")})
        costs = {size: one["mean_us"] for size, one in medians.items()}
        figures.note(f"{what}: " + ", ".join(f"{size} KB {cost:.0f} us" for size, cost in costs.items()))
        ratio = costs["100"] / costs["10"]
        figures.hold(f"markdown {what}", f"{ratio:.2f} x as much at 100 KB as at 10 KB (at most 1.3)", ratio <= 1.3)
    core = costs["100"] * 30 / 1e6
    figures.hold("markdown core", f"{core:.1%} of a core at 30 updates a second (at most 10 %)", core <= 0.1)
    one = run([program, "whole", "1000"])
    figures.hold("markdown whole", f"{one['ms']:.0f} ms for 1 MB at once (at most 150)", one["ms"] <= 150)


def search(figures):
    """Questions of one, two, three and six characters to 100,000 messages, beside tables of SQLite's own"""
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run([figures.program("bench_search"), folder], capture_output=True, text=True, check=True)
    for line in done.stdout.splitlines():
        one = {name: float(value) for name, value in re.findall(r"(\w+)=([\d.]+)", line)}
        if "length" not in one:
            figures.note(f"filled in {one['put_ms'] / 1e3:.1f} s, FTS5 with trigrams in {one['trigram_put_ms'] / 1e3:.1f} s")
            continue
        name = f"search {one['length']:.0f}"
        ratio = one["like_ms"] / one["median_ms"]
        trigram = f", FTS5 with trigrams {one['trigram_ms']:.2f} ms" if one["trigram_ms"] else ""
        figures.note(f"{name}: median {one['median_ms']:.2f} ms, LIKE {one['like_ms']:.1f} ms{trigram}")
        figures.hold(name, f"at worst {one['max_ms']:.1f} ms (under 50)", one["max_ms"] < 50)
        figures.hold(f"{name} LIKE", f"{ratio:.0f} x as fast as looking through them (at least 5)", ratio >= 5)
        if one["mismatches"]:
            raise SystemExit(f"{name}: the index finds other messages than LIKE does")


def drafts(figures):
    """What becomes of drafts when programs are killed, systems refuse and many write at once"""
    program = figures.program("bench_drafts")
    kills = int(os.environ.get("LMP_BENCH_KILLS", "20000"))
    saves = int(os.environ.get("LMP_BENCH_SAVES", "10000"))
    one = run([program, "kill", str(kills)])
    figures.note(
        f"{one['mid_save']:,.0f} of {one['kills']:,.0f} kills in the middle of a save, {one['acknowledged']:,.0f} saves "
        f"acknowledged, {one['wall_ms'] / 1e3:.0f} s"
    )
    good = one["lost"] == 0 and one["torn"] == 0
    figures.hold("drafts killed", f"{one['lost']:.0f} acknowledged saves lost, {one['torn']:.0f} files torn", good)
    figures.hold("drafts left", f"{one['left']:.0f} files of killed writers left after a listing", one["left"] == 0)
    good = one["open"] == 0 and one["looks"] > 0
    figures.hold("drafts private", f"{one['open']:.0f} of {one['looks']:,.0f} looks found a file open to others", good)
    one = run([program, "grid"])
    figures.note(f"{one['reported']:.0f} reported with the old content, {one['survived']:.0f} saved whole all the same")
    good = one["wrong"] == 0 and one["widest"] == 0 and one["reported"] > 0
    figures.hold("drafts grid", f"{one['wrong']:.0f} of {one['cells']:.0f} cells wrong", good)
    one = run([program, "race", "8", str(saves)])
    figures.note(f"{one['landed']:,.0f} landed, {one['elsewhere']:,.0f} changed elsewhere, {one['seconds']:.0f} s")
    good = one["lost"] == 0 and one["failed"] == 0 and one["landed"] + one["elsewhere"] == one["saves"]
    figures.hold("drafts race", f"{one['lost']:.0f} updates lost of {one['saves']:,.0f} saves", good)
    one = alternate({"all": [program, "durable", "1000"]})["all"]
    figures.note(", ".join(f"{name} {1e6 / one[name + '_us']:,.0f}/s" for name in ("bare", "ours", "qt", "store")))
    ratio = one["bare_us"] / one["ours_us"]
    figures.hold("drafts durable", f"{ratio:.2f} x the bare system calls (at least 0.9)", ratio >= 0.9)
    one = alternate({"all": [program, "typing", "1500"]}, 3)["all"]
    figures.note(f"a key {one['key_p99_us']:.0f} us (p99), {one['key_max_us']:.0f} us at most, {one['saves']:.0f} reports")
    held = one["held_p99_us"]
    figures.hold("drafts typing", f"the thread of the window held for {held:.0f} us (p99, at most 1,000)", held <= 1000)


def version(figures):
    """lumenpair --version, from exec to exit"""
    medians = alternate(
        {"ours": [figures.program("lumenpair"), "--version"], "qt_core": [figures.program("bench_qt_core")]}, 40
    )
    figures.note(", ".join(f"{label} {one['wall_ms']:.1f} ms" for label, one in medians.items()))
    ratio = medians["ours"]["wall_ms"] / medians["qt_core"]["wall_ms"]
    figures.hold("version", f"{ratio:.2f} x a program that makes a QCoreApplication (at most 1.5)", ratio <= 1.5)


def window(figures):
    """The window's start beside its peers', on a display without a graphics card"""
    window_figures.start(figures, alternate, ROUNDS)


def window_rest(figures):
    """The window beside its peers once nothing happens any more"""
    window_figures.rest(figures, alternate)


def window_chat(figures):
    """The window's chat while it is used: a long conversation, a growing reply, typing, the quick switcher"""
    window_figures.chat(figures, alternate, ROUNDS)


def child_lines(figures):
    """1,000,000 lines of 200 bytes out of a child, a line of 10 MB and more, and a flood that nobody takes"""
    child_figures.lines(figures, alternate)
    child_figures.long_line(figures, alternate)
    child_figures.stalled(figures, alternate)


def agents(figures):
    """500,000 lines of an agent into events, the start of an engine, permission verdicts"""
    agent_figures.events(figures, alternate)
    agent_figures.stalled(figures, alternate)
    agent_figures.start(figures, alternate)
    agent_figures.verdict(figures, alternate)


def children(figures):
    """Stopping and killing the program: nothing that its children have started is left"""
    child_figures.quitting(figures)
    child_figures.rounds(figures)


RUN = (
    *(close, chunk, latency, memory, records, chat, memories, markdown, search, drafts, version),
    *(child_lines, children, agents, window, window_rest, window_chat),
)
ALL = {one.__name__: one for one in RUN}


def main():
    if len(sys.argv) < 2 or any(name not in ALL for name in sys.argv[2:]):
        raise SystemExit(__doc__ + "\nFigures: " + ", ".join(ALL))
    figures = Figures(Path(sys.argv[1]).resolve())
    for name in sys.argv[2:] or ALL:
        print(f"{name}: {ALL[name].__doc__} (load {os.getloadavg()[0]:.1f})", flush=True)
        ALL[name](figures)
    if figures.missed:
        raise SystemExit("missed: " + ", ".join(figures.missed))


if __name__ == "__main__":
    main()
