#!/usr/bin/env bash
# Installs the two coding agents into DIR: setup.sh DIR. Does nothing where the wanted versions are there already.
#
# The versions are pinned: with a Node.js older than 22 a plain "npm install @anthropic-ai/claude-code" silently takes
# 2.1.197, the last version that names Node 18. The agents are native programs inside npm packages of their own; they
# need neither Node.js nor the packages' install scripts, which are left out.
set -euo pipefail

dir=$(mkdir -p "${1:?usage: setup.sh DIR}" && cd "$1" && pwd)
claude_version=${CLAUDE_VERSION:-2.1.329}
codex_version=${CODEX_VERSION:-0.169.0}
stamp="$dir/installed"
wanted="claude $claude_version codex $codex_version"

mkdir -p "$dir/home/.codex" "$dir/home/tmp"
[[ ! -f $stamp || $(<"$stamp") != "$wanted" ]] || exit 0

npm install --prefix "$dir/npm" --ignore-scripts --no-fund --no-audit --loglevel=error \
  "@anthropic-ai/claude-code@$claude_version" "@openai/codex@$codex_version"
mkdir -p "$dir/bin"
ln -sf "$dir"/npm/node_modules/@anthropic-ai/claude-code-*-*/claude "$dir/bin/claude"
ln -sf "$dir"/npm/node_modules/@openai/codex-*-*/vendor/*/bin/codex "$dir/bin/codex"
for tool in claude codex; do
  env -i HOME="$dir/home" CODEX_HOME="$dir/home/.codex" TMPDIR="$dir/home/tmp" PATH=/usr/bin:/bin \
    DISABLE_AUTOUPDATER=1 DISABLE_TELEMETRY=1 "$dir/bin/$tool" --version
done
echo "$wanted" > "$stamp"
