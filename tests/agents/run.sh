#!/usr/bin/env bash
# Both real agents against a scripted model, driven by `lumenpair dev`: run.sh LUMENPAIR-TERMINAL [FLOW...]
# They are installed when they are first needed; where that cannot be done, this says so and passes. Before them, when
# no flow or "rounds" is named, hundreds of short sessions with scripts in their place.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/lumenpair/agents

for tool in python3 git; do
  command -v "$tool" > /dev/null || { echo "skipped: there is no $tool"; exit 0; }
done
if [[ ! -d /proc/self ]]; then
  echo "skipped: which processes are left behind is read from /proc, which is not here"
  exit 0
fi
if [[ $# -lt 2 || $2 == rounds ]]; then
  python3 "$here/rounds.py" "$1"
  [[ ${2:-} != rounds ]] || exit 0
fi
if [[ ! -f $cache/installed ]] && ! command -v npm > /dev/null; then
  echo "skipped: the agents are not installed, and there is no npm to install them with"
  exit 0
fi
if ! "$here/setup.sh" "$cache"; then
  echo "skipped: the agents could not be installed (no network?)"
  exit 0
fi
exec python3 "$here/with_agents.py" "$cache" -- python3 "$here/flows.py" "$@"
