# shellcheck shell=bash
# Configures and builds a preset quietly: output is kept in build/<preset>/build.log and shown
# only when something fails.
#
#   source tools/lib/build.sh
#   build_preset PRESET [TARGET...]

build_preset() {
  local preset=$1 tree=build/$1 log=build/$1/build.log
  shift
  mkdir -p "$tree"

  # A tree that was configured for a checkout elsewhere cannot be used.
  if [[ -f $tree/CMakeCache.txt ]] &&
    ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$tree/CMakeCache.txt"; then
    rm -rf "$tree"
    mkdir -p "$tree"
  fi
  # Ninja configures again by itself when a CMakeLists.txt changes, but knows nothing of presets.
  if [[ ! -f $tree/build.ninja || CMakePresets.json -nt $tree/build.ninja ]]; then
    if ! cmake --preset "$preset" >"$log" 2>&1; then
      cat "$log" >&2
      echo "Configuring the preset $preset failed; the lines above say why." >&2
      return 1
    fi
  fi
  if ! ninja -C "$tree" -j "${PLEMORA_JOBS:-$(nproc)}" "$@" >"$log" 2>&1; then
    # From the first failure on; what was built before it does not matter.
    sed -n '/^FAILED: /,$p' "$log" | grep -v '^\[[0-9]*/[0-9]*\]' >&2 || cat "$log" >&2
    echo "Building the preset $preset failed; the whole output is in $log." >&2
    return 1
  fi
}
