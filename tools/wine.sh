#!/usr/bin/env bash
# Runs a Windows program under Wine in a prefix of our own, outside the clone and the user's own one.
# Usage: wine.sh PROGRAM [ARGUMENT]...
#        wine.sh --fin     ends what still runs in the prefix
# COFFRELUNE_WINEPREFIX names another prefix, which is made when it is missing.
set -euo pipefail

cache=${COFFRELUNE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/coffrelune}
export WINEPREFIX=${COFFRELUNE_WINEPREFIX:-$cache/wine}
export WINEDEBUG=${WINEDEBUG:--all}
# Neither a browser nor a .NET runtime: Wine would ask to download them.
export WINEDLLOVERRIDES="mscoree,mshtml="
export WINEARCH=win64
# File names are stored in the locale's encoding, which a service may lack.
[[ $(locale charmap 2>/dev/null) == UTF-8 ]] || export LC_ALL=C.UTF-8

if [[ ${1-} == --fin ]]; then
    [[ ! -d $WINEPREFIX ]] || wineserver -k || true # 1: there was nothing to end
    exit 0
fi
if [[ ! -f $WINEPREFIX/.ready ]]; then
    mkdir -p "${WINEPREFIX%/*}"
    exec 9>"$WINEPREFIX.lock"
    flock 9
    # Wine's server stays a while and must not keep the lock.
    [[ -f $WINEPREFIX/.ready ]] || wineboot -i >/dev/null 2>&1 </dev/null 9>&-
    touch "$WINEPREFIX/.ready"
    exec 9>&-
fi
exec wine "$@"
