#!/usr/bin/env bash
# Shows Plemora at work on a machine without sound hardware, or beside the user's own session:
# a private PipeWire session with two sinks that nobody hears, a few real players, the program,
# and its live table.
#
#   tools/private_session.sh [--seconds N] [ARGUMENT...]
#
# Runs until Ctrl-C, or for N seconds; the arguments go to the program. PLEMORA_BIN names another
# folder with the programs than build/release/bin.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/lib/pipewire_session.sh

bin=${PLEMORA_BIN:-$PWD/build/release/bin}
seconds=""
if [[ ${1:-} == --seconds ]]; then
  seconds=${2:-}
  if [[ ! $seconds =~ ^[0-9]+$ ]]; then
    echo "--seconds takes a whole number of seconds, as in: --seconds 20" >&2
    exit 2
  fi
  shift 2
fi

watcher=""
clean_up() {
  # From here on nothing interrupts, and a closed terminal or pipe does not matter.
  trap '' INT TERM HUP PIPE
  set +e
  if [[ -n $watcher ]]; then
    kill -TERM "$watcher" 2>/dev/null
    wait "$watcher" 2>/dev/null
  fi
  pipewire_session_stop
  echo 2>/dev/null
  echo "The private session has ended; nothing of it is left running." 2>/dev/null
}
trap clean_up EXIT
trap 'exit 0' INT TERM HUP PIPE

# attempt COMMAND...: until it succeeds, at most ten seconds; then shows why it does not.
attempt() {
  local tries
  for ((tries = 0; tries < 100; ++tries)); do
    if "$@" >/dev/null 2>&1; then
      return 0
    fi
    sleep 0.1
  done
  "$@"
}

# pause SECONDS: without a child that would outlive us.
exec {nothing}<> <(:)
pause() { read -r -t "$1" -u "$nothing" || true; }

# loop GAP COMMAND...: a player that starts its piece again after a gap, as its own child.
loop() {
  # shellcheck disable=SC2016  # expanded by the inner shell
  pipewire_session_spawn bash -c 'gap=$1; shift; while "$@"; do sleep "$gap"; done' loop "$@"
}

echo "Starting a private PipeWire session with two sinks that nobody hears:"
echo "\"Desk Speakers\" (the default) and \"Headphones\"."
pipewire_session_start
pipewire_session_add_sink desk-speakers "Desk Speakers"
pipewire_session_add_sink headphones "Headphones"
pw-metadata 0 default.configured.audio.sink '{ "name": "desk-speakers" }' Spa:String:JSON >/dev/null

echo "Starting four players of generated sound: mpv, pw-play, paplay (which comes and goes) and play."
tones=$PIPEWIRE_SESSION_DIR
sox -q -n -r 48000 -c 2 "$tones/sweep.wav" synth 6 sine 220-880 gain -3 fade 0.5 6 0.5
sox -q -n -r 48000 -c 2 "$tones/pulse.wav" synth 60 sine 330 tremolo 0.5 90 gain -3
sox -q -n -r 48000 -c 2 "$tones/rain.wav" synth 8 pinknoise gain -3
pipewire_session_spawn mpv --no-config --no-video --no-terminal --loop=inf --ao=pipewire \
  "$tones/sweep.wav"
loop 0 pw-play "$tones/pulse.wav"
loop 4 paplay "$tones/rain.wav"
AUDIODRIVER=pulseaudio pipewire_session_spawn play -q -n -r 48000 -c 2 synth sine 440 gain -6

echo "Starting Plemora as a service: plemora --no-ui${*:+ $*}"
pipewire_session_spawn "$bin/plemora" --no-ui "$@"
service=$!
if ! attempt "$bin/plemoractl" volume mpv 60%; then
  echo "Plemora did not come up. What it printed:" >&2
  tail -n 20 "$PIPEWIRE_SESSION_DIR/log/plemora" >&2
  exit 1
fi
attempt "$bin/plemoractl" volume pw-play 40%
attempt "$bin/plemoractl" output paplay Headphones
attempt "$bin/plemoractl" mute play

cat <<END
Plemora has set mpv to 60 % and pw-play to 40 %, sent paplay to the headphones and muted play.
From now on mpv's volume goes up and down in steps. This is "plemoractl watch"${seconds:+ for $seconds seconds};
Ctrl-C ends everything.

END
# The live table takes the whole terminal: leave some time to read. A pipe gets a line per change,
# so show there once how everything stands.
if [[ -t 1 ]]; then
  pause 4
else
  "$bin/plemoractl" list
  echo
fi
setpriv --pdeathsig TERM "$bin/plemoractl" watch </dev/null &
watcher=$!

# Were we started from a terminal? Then the session ends with it, also where it sends no signal.
terminal=""
for descriptor in 0 1; do
  if [[ -t $descriptor ]]; then
    terminal=$descriptor
  fi
done

volumes=(60 80 100 80 60 40 20 40)
step=0
end=$((SECONDS + ${seconds:-0}))
while [[ -z $seconds ]] || ((SECONDS < end)); do
  pause 1
  if [[ -n $terminal && ! -t $terminal ]]; then
    exit 0
  fi
  if ! kill -0 "$service" 2>/dev/null; then
    echo "Plemora has ended by itself. What it printed last:" >&2
    tail -n 20 "$PIPEWIRE_SESSION_DIR/log/plemora" >&2
    exit 1
  fi
  if ! kill -0 "$watcher" 2>/dev/null; then
    echo "plemoractl watch has ended by itself." >&2
    exit 1
  fi
  step=$((step + 1))
  if ((step % 2 == 0)); then
    "$bin/plemoractl" volume mpv "${volumes[step / 2 % ${#volumes[@]}]}%" >/dev/null || true
  fi
done
