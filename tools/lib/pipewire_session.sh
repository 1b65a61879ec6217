# shellcheck shell=bash
# A private PipeWire session: its own D-Bus session bus, PipeWire, WirePlumber and pipewire-pulse,
# in a directory of its own. Nothing of the user's own session is seen, heard or changed by it.
#
#   source tools/lib/pipewire_session.sh
#   pipewire_session_start            # exports the environment; 0 when everything answers
#   pipewire_session_add_sink NAME "Description"
#   pipewire_session_spawn COMMAND... # a child that ends with the session, with its own children
#   pipewire_session_stop             # ends every child, removes the directory; may be repeated
#
# The children run outside the terminal's process group, so that Ctrl-C reaches the calling script
# alone, which then calls pipewire_session_stop. They also die with the script if it is killed.

# Where the session lives; its subdirectory log/ holds what each program printed.
PIPEWIRE_SESSION_DIR=""
PIPEWIRE_SESSION_PIDS=()

pipewire_session_start() {
  local dir
  # A short path: the sockets' names must fit into 108 bytes.
  dir=$(mktemp -d /tmp/plemora-session.XXXXXX) || return 1
  PIPEWIRE_SESSION_DIR=$dir
  mkdir -m 0700 "$dir"/{run,config,state,cache,data,log}

  # Variables that would lead to the user's own sound server, bus or display.
  unset PIPEWIRE_REMOTE PIPEWIRE_RUNTIME_DIR PIPEWIRE_CONFIG_DIR PIPEWIRE_CONFIG_NAME PIPEWIRE_NODE \
    PULSE_SERVER PULSE_SINK PULSE_RUNTIME_PATH PULSE_CLIENTCONFIG WIREPLUMBER_CONFIG_DIR \
    DBUS_STARTER_ADDRESS DBUS_STARTER_BUS_TYPE DISPLAY WAYLAND_DISPLAY
  export XDG_RUNTIME_DIR=$dir/run XDG_CONFIG_HOME=$dir/config XDG_STATE_HOME=$dir/state
  export XDG_CACHE_HOME=$dir/cache XDG_DATA_HOME=$dir/data
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$dir/run/bus
  _pipewire_session_configure "$dir"

  pipewire_session_spawn dbus-daemon --nofork --nosyslog --config-file="$dir/config/bus.conf"
  _pipewire_session_wait "the D-Bus session bus" test -S "$dir/run/bus" || return 1
  pipewire_session_spawn pipewire
  _pipewire_session_wait "PipeWire" pw-cli info 0 || return 1
  pipewire_session_spawn wireplumber
  _pipewire_session_wait "WirePlumber" _pipewire_session_has_metadata || return 1
  pipewire_session_spawn pipewire-pulse
  _pipewire_session_wait "pipewire-pulse" test -S "$dir/run/pulse/native" || return 1
}

# pipewire_session_add_sink NAME DESCRIPTION: a sink that nobody hears. Only after the start: the
# session manager does not take well to idle sinks that are older than itself.
pipewire_session_add_sink() {
  pw-cli create-node adapter "{ factory.name=support.null-audio-sink media.class=Audio/Sink
    node.name=\"$1\" node.description=\"$2\" audio.position=[FL FR] monitor.channel-volumes=true
    object.linger=true }" >>"$PIPEWIRE_SESSION_DIR/log/pw-cli" 2>&1 &&
    _pipewire_session_wait "the sink $2" _pipewire_session_has_sink "$1"
}

pipewire_session_spawn() {
  # Without a session of its own, a child would get the terminal's Ctrl-C before we can say goodbye.
  setsid setpriv --pdeathsig TERM "$@" </dev/null \
    >>"$PIPEWIRE_SESSION_DIR/log/$(basename "$1")" 2>&1 &
  PIPEWIRE_SESSION_PIDS+=($!)
}

pipewire_session_stop() {
  local index pid
  # Players first, the bus last.
  for ((index = ${#PIPEWIRE_SESSION_PIDS[@]} - 1; index >= 0; --index)); do
    pid=${PIPEWIRE_SESSION_PIDS[index]}
    # The whole group: a player in a loop is a shell and its child.
    kill -TERM -- "-$pid" 2>/dev/null || kill -TERM "$pid" 2>/dev/null || continue
    # What does not end within two seconds is ended for good.
    for ((tries = 0; tries < 40; ++tries)); do
      kill -0 "$pid" 2>/dev/null || break
      sleep 0.05
    done
    kill -KILL -- "-$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  PIPEWIRE_SESSION_PIDS=()
  if [[ -n $PIPEWIRE_SESSION_DIR ]]; then
    rm -rf "$PIPEWIRE_SESSION_DIR"
    PIPEWIRE_SESSION_DIR=""
  fi
  return 0
}

# _pipewire_session_wait WHAT COMMAND...: waits until the command succeeds, at most ten seconds.
_pipewire_session_wait() {
  local what=$1
  shift
  for ((tries = 0; tries < 200; ++tries)); do
    if "$@" >/dev/null 2>&1; then
      return 0
    fi
    sleep 0.05
  done
  echo "$what of the private session did not answer within ten seconds. What it printed:" >&2
  tail -n 5 "$PIPEWIRE_SESSION_DIR"/log/* >&2
  return 1
}

_pipewire_session_has_metadata() { pw-cli ls Metadata | grep -q 'metadata.name = "default"'; }
_pipewire_session_has_sink() { pw-cli ls Node | grep -qF "node.name = \"$1\""; }

_pipewire_session_configure() {
  local config=$1/config
  # A bus that starts no services: what we start is all there is.
  cat >"$config/bus.conf" <<END
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=$1/run/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
END
  # Hands off the machine's cards, cameras and headsets: they belong to the user's own session.
  mkdir -p "$config"/wireplumber/{main.lua.d,bluetooth.lua.d,wireplumber.conf.d}
  cat >"$config/wireplumber/main.lua.d/60-no-hardware.lua" <<'END'
alsa_monitor.enabled = false
v4l2_monitor.enabled = false
libcamera_monitor.enabled = false
END
  echo 'bluez_monitor.enabled = false' >"$config/wireplumber/bluetooth.lua.d/60-no-hardware.lua"
  # The same for WirePlumber 0.5.
  cat >"$config/wireplumber/wireplumber.conf.d/60-no-hardware.conf" <<'END'
wireplumber.profiles = {
  main = { hardware.audio = disabled, hardware.bluetooth = disabled, hardware.video-capture = disabled }
}
END
}
