#!/bin/sh
# Runs the keyring tests against a real Secret Service in a session of its own: a private bus, a private home, a new
# keyring with a password of the test's. Each step is a process of its own, as a program's restart is.
#
#   keyring.sh KEYRING_TESTS
set -eu
tests=$1

# One test of the program. The time limit is far above what it needs: a keychain that hangs must not keep a program
# from ending.
step() {
  timeout 20 "$tests" --gtest_brief=1 --gtest_filter="Keyring.$1" >"$HOME/step.txt" 2>&1 || {
    echo "$1: exit status $?"
    cat "$HOME/step.txt"
    return 1
  }
  grep -q 'PASSED.* 1 test' "$HOME/step.txt" || { echo "$1: no such test"; return 1; }
  echo "$1: passed"
}

case ${2-} in
  without-service)
    step UnavailableWithoutAService
    step HangingServiceHoldsUpNothing
    exit 0 ;;
  with-service)
    printf 'a password' | gnome-keyring-daemon --unlock --components=secrets >/dev/null
    step StartsEmpty
    step Writes
    step ReadsBackAndReplaces
    step ReadsTheNewOneAndRemoves
    step ReadsBehindWhatIsUnderWay
    step StartsEmpty
    SECRET_BACKEND=file SECRET_FILE_TEST_PASSWORD=secret SECRET_FILE_TEST_PATH="$HOME/file.keyring" \
      step IsAskedWhereItWasWritten
    step Writes
    exit 0 ;;
  locked)
    gnome-keyring-daemon --start --components=secrets >/dev/null
    step IsNotEmptyForBeingLocked
    exit 0 ;;
esac

for tool in dbus-run-session gnome-keyring-daemon timeout; do
  command -v "$tool" >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME="$home" XDG_DATA_HOME="$home/data" XDG_CONFIG_HOME="$home/config" XDG_CACHE_HOME="$home/cache"
export XDG_RUNTIME_DIR="$home/run" XDG_CURRENT_DESKTOP=X-Test
unset DISPLAY WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS DESKTOP_SESSION KDE_SESSION_VERSION KDE_FULL_SESSION \
  GNOME_KEYRING_CONTROL
mkdir -p "$XDG_DATA_HOME/keyrings" "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME"
mkdir -m 700 "$XDG_RUNTIME_DIR"
# Nothing is activated on these buses but what is started here.
cat >"$home/bus.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=$home</listen>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
CONF

step UnavailableWithoutABus
for session in without-service with-service locked; do
  dbus-run-session --config-file "$home/bus.conf" -- sh "$0" "$tests" "$session"
done
# The last step left a token in the keyring, which is on the disk by now, but not in clear.
ls "$XDG_DATA_HOME"/keyrings/*.keyring >/dev/null
if grep -r -a -F token-one "$XDG_DATA_HOME" "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME" "$XDG_RUNTIME_DIR"; then
  echo "a token lies on the disk in clear"
  exit 1
fi
