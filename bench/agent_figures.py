"""The figures of agents: their lines as events, how soon they start, and what a verdict costs. Called by figures.py."""

import json
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
LINES = 500_000
LENGTH = 200
INIT = '{"type":"system","subtype":"init","session_id":"1","model":"m"}'


def script(folder, name, text):
    path = Path(folder) / name
    path.write_text(text)
    path.chmod(0o755)
    return str(path)


def events(figures, alternate):
    with tempfile.TemporaryDirectory() as folder:
        producer = figures.program("bench_line_producer")
        agent = script(folder, "agent", f"#!/bin/sh\nexec {producer} {LINES} {LENGTH} says\n")
        medians = alternate(
            {
                "ours": [figures.program("bench_engine_events"), agent],
                "qt_json": [figures.program("bench_qt_events"), agent],
            }
        )
    if len({one["sum"] for one in medians.values()}) != 1:
        raise SystemExit("the readers did not read the same")
    figures.note(", ".join(f"{name} {LINES / one['ms'] / 1e3:.2f} M/s" for name, one in medians.items()))
    ratio = medians["qt_json"]["ms"] / medians["ours"]["ms"]
    figures.hold("agent events", f"{ratio:.2f} x QProcess with QJsonDocument (at least 1.0)", ratio >= 1.0)


def stalled(figures, alternate):
    with tempfile.TemporaryDirectory() as folder:
        said = {"method": "item/agentMessage/delta", "params": {"itemId": "m", "delta": "x" * 120}}
        replies = [{}, {"account": {}}, {"thread": {"id": "t"}, "model": "m"}]
        reads = ("read -r line", "read -r line; read -r line", "read -r line")
        talk = "".join(
            f"{read}\necho '{json.dumps({'id': number, 'result': reply})}'\n"
            for number, (read, reply) in enumerate(zip(reads, replies), 1)
        )
        agents = {
            "claude": script(
                folder, "claude", f"#!/bin/sh\nexec {figures.program('bench_line_producer')} 0 {LENGTH} says\n"
            ),
            "codex": script(folder, "codex", f"#!/bin/sh\n{talk}exec yes '{json.dumps(said)}'\n"),
        }
        events = figures.program("bench_engine_events")
        medians = alternate({name: [events, path, "stall", name] for name, path in agents.items()}, 3)
    for name, one in medians.items():
        growth = one["growth_kb"] / 1024
        good = growth < 16 and one["flows"] == 1 and one["waited"] > 0
        figures.hold(
            f"stalled {name}", f"the engine grows by {growth:.1f} MB (under 16), {one['waited']:.0f} events waited", good
        )


def start(figures, alternate):
    with tempfile.TemporaryDirectory() as folder:
        scripts = {
            "python": script(
                folder, "python", f"#!{sys.executable}\nimport json, sys\nprint('{INIT}', flush=True)\n"
            ),
            "sh": script(folder, "sh", f"#!/bin/sh\necho '{INIT}'\n"),
        }
        medians = alternate(
            {
                f"{name} {side}": [figures.program(program), path]
                for name, path in scripts.items()
                for side, program in (("ours", "bench_engine_events"), ("alone", "bench_first_line"))
            },
            20,
        )
    figures.note(", ".join(f"{name} {one['first_ms']:.2f} ms" for name, one in medians.items()))
    ratios = {name: medians[f"{name} ours"]["first_ms"] / medians[f"{name} alone"]["first_ms"] for name in scripts}
    figures.note(f"a shell script that does nothing else: {ratios['sh']:.2f} x its own time")
    figures.hold("agent start", f"{ratios['python']:.2f} x the script's own time (at most 1.5)", ratios["python"] <= 1.5)


def verdict(figures, alternate):
    one = alternate({"ours": [figures.program("bench_policy_verdicts")]}, 3)["ours"]
    figures.note(f"a path of 16 KiB p99 {one['path_p99_us']:.0f} us, an ordinary command p99 {one['usual_p99_us']:.1f} us")
    worst = one["worst_p99_us"] / 1e3
    figures.hold("verdict worst", f"p99 {worst:.2f} ms for the worst of 16 KiB (at most 20)", worst <= 20)
    figures.hold("verdict usual", f"{one['usual_us']:.1f} us for an ordinary command (under 50)", one["usual_us"] < 50)
