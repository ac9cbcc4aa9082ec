#!/bin/bash
# with_sound_server.sh COMMAND [ARGUMENT...]: runs a command with a PulseAudio server of its own and ends with the command's exit
# status. Its only device is a null sink (one channel, 22050 frames a second, 16 bits): what is played there can be recorded from the
# device "tavolo_test.monitor", and heard nowhere. Needs pulseaudio and pactl.
set -u
[ $# -gt 0 ] || { sed -n '2,4p' "$0"; exit 2; }
for tool in pulseaudio pactl; do
    command -v "$tool" >/dev/null || { echo "with_sound_server.sh: $tool is not installed" >&2; exit 127; }
done

work=$(mktemp -d)
server=''
command=''
clean_up() {
    for process in $command $server; do kill "$process" 2>/dev/null; done
    for process in $command $server; do wait "$process" 2>/dev/null; done
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

export PULSE_RUNTIME_PATH="$work" PULSE_STATE_PATH="$work" PULSE_SERVER="unix:$work/native"
pulseaudio -n --daemonize=no --use-pid-file=no --exit-idle-time=-1 --disable-shm=yes --realtime=no \
    --high-priority=no \
    -L "module-native-protocol-unix auth-anonymous=1 socket=$work/native" \
    -L "module-null-sink sink_name=tavolo_test rate=22050 channels=1 format=s16le" \
    >"$work/server.log" 2>&1 &
server=$!
end=$((SECONDS + 10))
until pactl list short sinks 2>/dev/null | grep -q tavolo_test; do
    if [ $SECONDS -ge $end ] || ! kill -0 "$server" 2>/dev/null; then
        echo "with_sound_server.sh: pulseaudio does not start" >&2
        cat "$work/server.log" >&2
        exit 1
    fi
    sleep 0.02
done

"$@" &
command=$!
wait "$command"
status=$?
command=''
exit "$status"
