# shellcheck shell=bash
# Installs the Debian packages that are missing, and says so.
#
#   source tools/lib/packages.sh
#   ensure_packages "what they are for" LIST...
#
# A list names one package a line; what follows a # is a comment.

ensure_packages() {
  local purpose=$1 wanted missing=() as_root=() states
  shift
  mapfile -t wanted < <(sed -e 's/#.*//' -e 's/[[:space:]]*//g' -e '/^$/d' "$@" | sort -u)

  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "This is not a Debian system, so nothing is installed by itself. Needed $purpose," \
      "under Debian's names: ${wanted[*]}." >&2
    return 0
  fi

  # The query fails when it does not know a package; what it printed counts.
  states=$(dpkg-query --show --showformat='${Package} ${db:Status-Status}\n' "${wanted[@]}" \
    2>/dev/null || true)
  local package
  for package in "${wanted[@]}"; do
    if ! grep -qxF "$package installed" <<<"$states"; then
      missing+=("$package")
    fi
  done
  if ((${#missing[@]} == 0)); then
    return 0
  fi

  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "Missing $purpose: ${missing[*]}. Please install them as root:" >&2
      echo "  apt-get install --no-install-recommends ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
    # Without a terminal sudo could ask for a password that nobody can type.
    if [[ ! -t 0 ]]; then
      as_root+=(--non-interactive)
    fi
  fi
  as_root+=(env DEBIAN_FRONTEND=noninteractive)

  echo "Installing what is missing $purpose: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! {
    "${as_root[@]}" apt-get update -q &&
      "${as_root[@]}" apt-get install -q -y --no-install-recommends "${missing[@]}"
  } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    rm -f "$log"
    echo "The packages could not be installed. Please install them as root:" >&2
    echo "  apt-get install --no-install-recommends ${missing[*]}" >&2
    return 1
  fi
  rm -f "$log"
}
