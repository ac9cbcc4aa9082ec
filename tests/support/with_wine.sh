#!/usr/bin/env bash
# with_wine.sh PROGRAM...: runs a Windows program through Wine, in the folder $WINEPREFIX, which the first run makes.
set -euo pipefail
: "${WINEPREFIX:?the folder of the tests own Wine}"
# Nothing is fetched, nothing is said that is not the program's.
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe=" LC_ALL=C.UTF-8 TZ=UTC0
# A path without a drive is one of another system.
[[ ${TAVOLO_SHARED:-} != /* ]] || export TAVOLO_SHARED=Z:$TAVOLO_SHARED
mkdir -p "$WINEPREFIX"
# Windows programs need certain addresses. Debian's Wine has no preloader to keep them free, and where the kernel strews what it maps, one
# start in some 1,600 ends with error 1359 before the program has begun (none in 10,000 without that).
fixed=()
if setarch -R true 2>/dev/null; then fixed=(setarch -R); fi  # some sandboxes do not allow it
(
    flock 9
    [ -e "$WINEPREFIX/made" ] && exit
    timeout 300 "${fixed[@]}" wineboot --init >/dev/null 2>&1
    # Windows that nobody sees: these tests need no display. The desktop that has just been made knows nothing of it and ends.
    "${fixed[@]}" wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1
    wineserver --kill || true  # it may have ended by itself
    wineserver --wait
    touch "$WINEPREFIX/made"
) 9>"$WINEPREFIX/making"
exec "${fixed[@]}" wine "$@"
