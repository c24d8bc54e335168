#!/usr/bin/env bash
# Runs a command with a screen of its own, which nobody sees. Usage: with-screen.sh COMMAND...
set -uo pipefail

coproc screen { exec Xvfb -displayfd 1 -noreset -screen 0 1280x1000x24 -nolisten tcp 2>/dev/null; }
pid=$screen_PID
trap 'kill "$pid" 2>/dev/null' EXIT
if ! read -r number <&"${screen[0]}"; then
    echo "Xvfb ne démarre pas." >&2
    exit 1
fi
unset XAUTHORITY
DISPLAY=:$number "$@"
