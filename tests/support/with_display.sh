#!/bin/bash
# with_display.sh COMMAND [ARGUMENT...]: runs a command on a virtual display of its own with a window manager, and ends with
# the command's exit status. Needs Xvfb, openbox and wmctrl. The display has one screen of 1280x1024 pixels
# (DISPLAY_SIZE=WIDTHxHEIGHT asks for another one) and is gone when the command has ended.
set -u
[ $# -gt 0 ] || { sed -n '2,4p' "$0"; exit 2; }
for tool in Xvfb openbox wmctrl; do
    command -v "$tool" >/dev/null || { echo "with_display.sh: $tool is not installed" >&2; exit 127; }
done

work=$(mktemp -d)
server=''
manager=''
command=''
clean_up() {
    for process in $command $manager $server; do kill "$process" 2>/dev/null; done
    for process in $command $manager $server; do wait "$process" 2>/dev/null; done
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# wait_until DESCRIPTION COMMAND...: until the command succeeds, ten seconds at most.
wait_until() {
    local what=$1 end=$((SECONDS + 10))
    shift
    until "$@" >/dev/null 2>&1; do
        if [ $SECONDS -ge $end ]; then
            echo "with_display.sh: $what" >&2
            cat "$work"/*.log >&2
            exit 1
        fi
        sleep 0.02
    done
}

# The server itself picks a number that is free and writes it when it can be connected to.
Xvfb -displayfd 3 -screen 0 "${DISPLAY_SIZE:-1280x1024}x24" -nolisten tcp -noreset \
    3>"$work/display" >"$work/server.log" 2>&1 &
server=$!
wait_until "Xvfb does not start" test -s "$work/display"
DISPLAY=":$(<"$work/display")"
export DISPLAY
unset WAYLAND_DISPLAY

openbox --sm-disable >"$work/manager.log" 2>&1 &
manager=$!
wait_until "openbox does not start" wmctrl -m
# It announces itself before it listens: a message that comes in between is lost. When it obeys, it listens.
obeys() {
    wmctrl -n 2
    xprop -root _NET_NUMBER_OF_DESKTOPS | grep -q '= 2$'
}
wait_until "openbox does not listen" obeys

"$@" &
command=$!
wait "$command"
status=$?
command=''
exit "$status"
