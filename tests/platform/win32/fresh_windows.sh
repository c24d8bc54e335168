#!/usr/bin/env bash
# Runs a test program in a fresh Windows of its own under Wine: with two drives that tests may empty
# (COFFRELUNE_TEST_DRIVES), a small one that they may fill where this user may mount one
# (COFFRELUNE_TEST_SMALL_DRIVE), and a display where there is Xvfb. What is missing, the tests that
# need it say. Usage: fresh_windows.sh EMULATOR PROGRAM [ARGUMENT]...
set -euo pipefail

emulator=$1
shift
base=$(realpath "$(mktemp -d -t coffrelune-windows-XXXXXX)")
export COFFRELUNE_WINEPREFIX=$base/wine WINEPREFIX=$base/wine
screen=

end_server() {
    wineserver -k 2>/dev/null || true
    wineserver -w 2>/dev/null || true
}

# A program that the server has ended may hold the drive or write in its Windows for a moment yet.
# Whatever becomes of it: the status of this script is that of the tests.
clean_up() {
    end_server
    [[ -z $screen ]] || kill "$screen" 2>/dev/null || true
    for _ in {1..100}; do
        ! mountpoint -q "$base/w" || umount "$base/w" 2>/dev/null || true
        ! mountpoint -q "$base/w" && rm -rf "$base" 2>/dev/null && return
        sleep 0.1
    done
    echo "$base n'a pas pu être enlevé." >&2
}
trap clean_up EXIT
trap 'exit 1' INT TERM

# Which letters there are is read when the first program starts.
"$emulator" cmd.exe /c exit >/dev/null 2>&1 </dev/null
end_server
for letter in u v w; do
    mkdir "$base/$letter"
done
ln -s "$base/u" "$WINEPREFIX/dosdevices/u:"
ln -s "$base/v" "$WINEPREFIX/dosdevices/v:"
export COFFRELUNE_TEST_DRIVES=U:V:
if mount -t tmpfs -o size=64m,mode=0777 tmpfs "$base/w" 2>/dev/null; then
    ln -s "$base/w" "$WINEPREFIX/dosdevices/w:"
    export COFFRELUNE_TEST_SMALL_DRIVE=W:
fi

if command -v Xvfb >/dev/null; then
    mkfifo "$base/display"
    Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3<>"$base/display" >/dev/null 2>&1 &
    screen=$!
    read -r -t 120 number <"$base/display" || number=
    [[ -z $number ]] || export DISPLAY=:$number
fi

"$emulator" "$@"
