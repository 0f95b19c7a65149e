"""The window beside its peers: how soon it is there, what it holds, what it costs while nothing happens.

Each program runs on a display, a session bus and in a home of its own, which is kept from round to round: the first
round, which does not count, fills the caches.
"""

import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

from sandbox_account import Sandbox
from window_service import WindowService

HERE = Path(__file__).resolve().parent
CHAT = "hello"
# Who sits at a desktop has the keyring unlocked long before a program is started.
SESSION = """
command -v gnome-keyring-daemon >/dev/null && printf secret | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1
exec "$@"
"""


class Display:
    """An X display without a screen, and homes for those who use it, for as long as the block lasts."""

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory()
        ours, theirs = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(theirs), "-screen", "0", "1600x1000x24", "-nolisten", "tcp"],
            pass_fds=[theirs],
            stderr=subprocess.DEVNULL,
        )
        os.close(theirs)
        with os.fdopen(ours) as number:
            self._name = ":" + number.readline().strip()
        return self

    def __exit__(self, *_):
        self._server.terminate()
        self._server.wait()
        self._folder.cleanup()

    def command(self, label, watch, command, **environment):
        """The command line that watches `command` in the home of `label`."""
        home = Path(self._folder.name, label)
        runtime = home / "run"
        runtime.mkdir(mode=0o700, parents=True, exist_ok=True)
        settings = {
            "HOME": home,
            "XDG_CONFIG_HOME": home / ".config",
            "XDG_DATA_HOME": home / ".local/share",
            "XDG_CACHE_HOME": home / ".cache",
            "XDG_RUNTIME_DIR": runtime,
            "DISPLAY": self._name,
            "LC_ALL": "C.UTF-8",
            "QT_QPA_PLATFORM": "xcb",
        } | environment
        words = [f"{name}={value}" for name, value in settings.items()]
        unset = [word for name in ("WAYLAND_DISPLAY", "LMP_TOKEN", "LMP_SITE") if name not in settings
                 for word in ("-u", name)]
        return ["env", *unset, *words, "dbus-run-session", "--", "sh", "-c", SESSION, "session", *watch, *command]


def peers():
    """Other people's programs, where they are installed."""
    found = {}
    if program := shutil.which("nheko"):
        found["nheko"] = [program]
    if program := shutil.which("chromium"):
        page = "data:text/html,<title>page</title><p>Hello 你好</p><button>Send</button>"
        found["chromium"] = [program, "--no-sandbox", "--no-first-run", "--password-store=basic", f"--app={page}"]
    return found


# Of these no start is asked, and what a machine does right after them is not what it does otherwise.
HEAVY = ("hello_gl", "chromium")


def watch(figures, settle, idle, *more):
    return [figures.program("bench_window_watch"), "--settle", settle, "--idle", idle, *more]


def ours(figures, sandbox):
    return [figures.program("lumenpair"), "--site", sandbox.url]


def settle_in(figures, display, sandbox, home, phone, conversations=0):
    """Signs in as a person does, into the keychain of a home, and goes on to where the window begins from then on."""
    token = sandbox.sign_in(phone)
    sandbox.post("/api/app/handle", {"handle": "bench" + phone[-4:]}, token)
    sandbox.seed(token, conversations)
    done = subprocess.run(
        display.command(home, [], [*ours(figures, sandbox), "sign-in", "--phone", phone]),
        capture_output=True,
        input="\n",
        text=True,
    )
    if done.returncode:
        raise SystemExit(f"{done.stdout}{done.stderr}nobody signed in")
    # Past what a new person is shown; then a word to the twin, which costs something where it arrives.
    for typed in ("\n\n\n\n", CHAT + "\n"):
        watching = watch(figures, "2", "4", "--type", typed)
        subprocess.run(display.command(home, watching, ours(figures, sandbox)), check=True, capture_output=True)
    if not sandbox.get("/sandbox/charges", token)["charges"]:
        raise SystemExit("the window never came to the chat")


def beside_peers(figures, display, sandbox, watching):
    """The command lines of the window, without an account and with one of 50 conversations, and of its peers."""
    settle_in(figures, display, sandbox, "account", "13800000000", conversations=49)
    hello = [figures.program("bench_qml_hello")]
    return {
        "hello": display.command("hello", watching, hello, QT_QUICK_BACKEND="software"),
        "hello_gl": display.command("hello_gl", watching, hello),
        "sign_in": display.command("sign_in", watching, ours(figures, sandbox)),
        "account": display.command("account", watching, ours(figures, sandbox)),
    } | {label: display.command(label, watching, command) for label, command in peers().items()}


def start(figures, alternate, rounds):
    """The window on a display without a graphics card: from exec to text drawn"""
    with Display() as display, Sandbox(figures.program("lumenpair-sandbox")) as sandbox:
        commands = beside_peers(figures, display, sandbox, watch(figures, "1", "0"))
        light = {label: command for label, command in commands.items() if label not in HEAVY}
        # A start takes as long as a few time slices: the median of a few of them is anything.
        report_start(figures, alternate(light, 3 * rounds))


def rest(figures, alternate):
    """What the window holds after 10 s, and does in the 10 s that follow"""
    with Display() as display, Sandbox(figures.program("lumenpair-sandbox")) as sandbox:
        commands = beside_peers(figures, display, sandbox, watch(figures, "10", "10"))
        # A reply that has begun and says no more.
        settle_in(figures, display, sandbox, "waiting", "13800000001")
        commands["waiting"] = display.command(
            "waiting", watch(figures, "10", "10", "--type", CHAT), ours(figures, sandbox)
        )
        sandbox.post("/sandbox/faults", {"route": "/relay/chat/stream", "times": -1, "stallAfterEvents": 3})
        see_waiting(sandbox, commands["waiting"])
        report_rest(figures, alternate(commands, 2))


def see_waiting(sandbox, command):
    """A run that does not count: the figure is nothing if no stream is open."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as run:
        streams = 0
        while run.poll() is None:
            streams = max(streams, sandbox.get("/sandbox/status")["streams"])
            time.sleep(0.5)
    if streams != 1:
        raise SystemExit(f"{streams} streams are open where one should be")


def report_start(figures, medians):
    for label, one in medians.items():
        figures.note(f"{label}: text {one['text_ms']:.0f} ms, done {one['done_ms']:.0f} ms")
    hello, sign_in, account = (medians[label] for label in ("hello", "sign_in", "account"))
    ratio = sign_in["done_ms"] / hello["text_ms"]
    figures.hold("sign-in screen", f"{ratio:.2f} x the hello on the same backend (at most 1.6)", ratio <= 1.6)
    if nheko := medians.get("nheko"):
        ratio = sign_in["done_ms"] / nheko["text_ms"]
        figures.hold("sign-in screen and nheko", f"{ratio:.2f} x nheko (less than 1)", ratio < 1)
    more = account["done_ms"] - sign_in["done_ms"]
    figures.hold("account of 50", f"{more:.0f} ms more than the sign-in screen (at most 60)", more <= 60)


def report_rest(figures, medians):
    for label, one in medians.items():
        figures.note(
            f"{label}: PSS {one['pss_kb'] / 1024:.1f} MB, {one['threads']:.0f} threads in {one['processes']:.0f} "
            f"processes, {one['idle_ticks']:.0f} ticks in 10 s"
        )
    hello, sign_in, account, waiting = (medians[label] for label in ("hello", "sign_in", "account", "waiting"))
    for label, one in (("sign-in", sign_in), ("account", account)):
        more = (one["pss_kb"] - hello["pss_kb"]) / 1024
        figures.hold(f"memory, {label}", f"{more:.1f} MB more than the hello (at most 35)", more <= 35)
    if chromium := medians.get("chromium"):
        ratio = account["pss_kb"] / chromium["pss_kb"]
        figures.hold("memory and chromium", f"{ratio:.2f} x chromium --app (at most 0.45)", ratio <= 0.45)
    for label, one in (("account", account), ("a quiet stream", waiting)):
        figures.hold(f"idle, {label}", f"{one['idle_ticks']:.0f} ticks of CPU in 10 s (0)", one["idle_ticks"] == 0)
        more = one["threads"] - hello["threads"]
        figures.hold(f"threads, {label}", f"{more:.0f} more than the hello (at most 4)", more <= 4)


def chat(figures, alternate, rounds):
    """The chat while it is used: a long conversation, a growing reply, typing, the quick switcher"""
    program = figures.program("bench_window_chat")
    with Display() as display, WindowService() as service:
        modes = ("open", "wheel", "scroll", "stream", "keys")
        commands = {mode: display.command(mode, [], [program, service.url, mode]) for mode in modes}
        medians = alternate(commands, rounds)
    opening, turning, scrolling, streaming, typing = (medians[mode] for mode in modes)
    figures.note(
        f"10,000 messages: {opening['asked_ms']:.0f} ms from the click, with the answer's way and its reading; "
        f"{opening['quiet_ms']:.0f} ms from the data until the last frame"
    )
    ms = opening["open_ms"]
    figures.hold("10,000 messages", f"{ms:.0f} ms from the data to the first paint (at most 150)", ms <= 150)
    figures.hold("10,000 messages, memory", f"{opening['open_mb']:.0f} MB more (at most 100)", opening["open_mb"] <= 100)
    figures.note(f"of that {opening['open_cpu_ms']:.0f} ms of CPU until the first paint")
    for label, name, one in (("a wheel's pace", "wheel", turning), ("a screen a frame", "scroll", scrolling)):
        figures.note(
            f"scrolling at {label}: {one[name + '_frames']:.0f} frames, median {one[name + '_p50_ms']:.1f} ms, "
            f"p99 {one[name + '_p99_ms']:.1f} ms, longest {one[name + '_max_ms']:.1f} ms; in "
            f"{one[name + '_unfinished']:.0f} of them some row in sight was not made yet"
        )
    over, blank = turning["wheel_over"], turning["wheel_unfinished"]
    figures.hold(
        "scrolling at a wheel's pace",
        f"{over:.0f} frames over 33 ms and {blank:.0f} with a row not made yet (none)",
        over == 0 and blank == 0,
    )
    over = scrolling["scroll_over"]
    figures.hold(
        "scrolling end to end",
        f"{over:.0f} frames over 33 ms (none){'' if scrolling['scroll_reached'] else ', and never there'}",
        over == 0 and scrolling["scroll_reached"] == 1,
    )
    share = streaming["stream_10_cpu"]
    figures.hold("100 deltas/s", f"{share:.1f} % of a core (at most 10)", share <= 10)
    ratio = streaming["stream_100_cpu"] / streaming["stream_10_cpu"]
    figures.hold("a delta at 100 KB", f"{ratio:.2f} x the one at 10 KB (at most 1.3)", ratio <= 1.3)
    figures.note(f"typing: {typing['keys']:.0f} letters, median {typing['keys_p50_ms']:.1f} ms")
    ms = typing["keys_p99_ms"]
    figures.hold("key to glyph", f"p99 {ms:.1f} ms while a reply streams (at most 16)", ms <= 16)
    figures.note(f"quick switcher: the second time {opening['switcher_again_ms']:.0f} ms")
    ms = opening["switcher_ms"]
    figures.hold("quick switcher", f"{ms:.0f} ms the first time (at most 50)", ms <= 50)
