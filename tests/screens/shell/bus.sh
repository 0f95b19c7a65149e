#!/bin/sh
# Runs a test in a session bus of its own; 77 where there can be none.
command -v dbus-run-session >/dev/null || { echo "no dbus-run-session"; exit 77; }
exec dbus-run-session -- "$@"
