#!/usr/bin/env python3
"""Runs a command with both coding agents on its PATH and a scripted model behind each.

usage: with_agents.py DIR [--scenario FILE] [--log FILE] [--codex-login] -- COMMAND [ARGUMENT...]
DIR is what setup.sh filled. The agents have a home of their own in it that goes with the command, so that several may
run at the same time. The exit status is the command's.
"""

import argparse
import os
import subprocess
import sys
import tempfile
import threading

from fake_anthropic import Anthropic
from fake_http import make_server
from fake_openai import OpenAI

FOREIGN = ("ANTHROPIC_", "CLAUDE", "OPENAI_", "CODEX_", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY")
CODEX_CONFIG = """\
model = "gpt-5.5"
model_provider = "scripted"
check_for_update_on_startup = false

[model_providers.scripted]
name = "Scripted model"
base_url = "{url}/v1"
wire_api = "responses"
{auth}
request_max_retries = 1
stream_max_retries = 1

[analytics]
enabled = false
"""


def environment(directory, home, anthropic_url):
    env = {key: value for key, value in os.environ.items() if not key.upper().startswith(FOREIGN)}
    env.update(
        HOME=home,
        CODEX_HOME=os.path.join(home, ".codex"),
        TMPDIR=os.path.join(home, "tmp"),  # Codex puts no helper programs into a home inside the temporary directory
        PATH=os.path.join(directory, "bin") + os.pathsep + env.get("PATH", "/usr/bin:/bin"),
        ANTHROPIC_BASE_URL=anthropic_url,
        ANTHROPIC_API_KEY="sk-fake",
        SCRIPTED_MODEL_KEY="sk-fake",
        CLAUDE_CODE_MAX_RETRIES="1",
        CLAUDE_CODE_DISABLE_NONESSENTIAL_TRAFFIC="1",
        DISABLE_AUTOUPDATER="1",
        DISABLE_ERROR_REPORTING="1",
        DISABLE_TELEMETRY="1",
    )
    return env


def split_at(items, mark):
    where = items.index(mark) if mark in items else len(items)
    return items[:where], items[where : where + 1], items[where + 1 :]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("directory")
    parser.add_argument("--scenario")
    parser.add_argument("--log")
    parser.add_argument(
        "--codex-login",
        action="store_true",
        help="Codex asks for a login of its own, as with its stock provider, and gets none: account/read shows no account",
    )
    own, separator, command = split_at(sys.argv[1:], "--")
    args = parser.parse_args(own)
    if not separator or not command:
        parser.error("no command after --")

    urls = []
    for handler in (Anthropic, OpenAI):
        server = make_server(handler, 0, args.scenario, args.log)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        urls.append(f"http://127.0.0.1:{server.server_port}")
    directory = os.path.abspath(args.directory)
    auth = "requires_openai_auth = true" if args.codex_login else 'env_key = "SCRIPTED_MODEL_KEY"'
    with tempfile.TemporaryDirectory(dir=directory, prefix="home-", ignore_cleanup_errors=True) as home:
        env = environment(directory, home, urls[0])
        for folder in (env["CODEX_HOME"], env["TMPDIR"]):
            os.mkdir(folder)
        with open(os.path.join(env["CODEX_HOME"], "config.toml"), "w", encoding="utf-8") as file:
            file.write(CODEX_CONFIG.format(url=urls[1], auth=auth))
        code = subprocess.run(command, env=env, check=False).returncode
    sys.exit(code)


if __name__ == "__main__":
    main()
