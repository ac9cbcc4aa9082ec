#!/usr/bin/env bash
# with_wine.sh PROGRAM...: runs a Windows program through Wine, in the folder $WINEPREFIX, which the first run makes.
set -euo pipefail
: "${WINEPREFIX:?the folder of the tests own Wine}"
# Nothing is fetched, nothing is said that is not the program's.
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8 TZ=UTC0
mkdir -p "$WINEPREFIX"
(
    flock 9
    [ -e "$WINEPREFIX/made" ] && exit
    timeout 300 wineboot --init >/dev/null 2>&1
    touch "$WINEPREFIX/made"
) 9>"$WINEPREFIX/making"
exec wine "$@"
