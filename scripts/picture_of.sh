#!/usr/bin/env bash
# picture_of.sh PICTURE PROGRAM [ARGUMENTS...]: starts PROGRAM on a virtual display with a window manager, waits until a window
# of it is there and drawn, writes a picture of the display to PICTURE, ends the program and says where the picture is.
set -euo pipefail
picture=$1; shift

work=$(mktemp -d)
pids=()
finish() { for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done; rm -rf "$work"; }
trap finish EXIT

wait_until() {  # wait_until SECONDS COMMAND...: until the command succeeds
    local end=$((SECONDS + $1)); shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || { echo "waited in vain for: $*" >&2; exit 1; }
        sleep 0.1
    done
}

mkfifo "$work/display"
exec 9<>"$work/display"
Xvfb -displayfd 9 -screen 0 1280x900x24 -nolisten tcp -noreset 2>/dev/null &
pids+=($!)
read -r -t 20 number <&9 || { echo "no virtual display" >&2; exit 1; }
export DISPLAY=:$number QT_QPA_PLATFORM=xcb
openbox 2>/dev/null & pids+=($!)
wait_until 20 sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"'

"$@" & program=$!
pids+=("$program")
has_window() { kill -0 "$program" && wmctrl -l | grep -q .; }
wait_until 60 has_window
# Drawn: two pictures in a row are the same.
previous=none
for _ in $(seq 100); do
    import -window root "$picture"
    now=$(sha1sum < "$picture")
    [ "$now" = "$previous" ] && break
    previous=$now
    sleep 0.4
done
echo "There is no display here: Tavolo ran on a virtual one. A picture of its window: $picture"
kill "$program" 2>/dev/null || true
wait "$program" 2>/dev/null || true
