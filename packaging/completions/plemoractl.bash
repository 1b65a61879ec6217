# Completion of plemoractl for bash.

_plemoractl_ids() {
  # Ids of apps or devices; none while plemora does not run.
  plemoractl "$1" --ids 2>/dev/null
}

_plemoractl() {
  local current=${COMP_WORDS[COMP_CWORD]}
  local command=${COMP_WORDS[1]} position=$COMP_CWORD words=
  # Bash breaks words at colons, which ids may hold; the library puts them together again.
  if declare -F _get_comp_words_by_ref >/dev/null; then
    local cur words_ cword
    _get_comp_words_by_ref -n : -c cur -w words_ -i cword
    current=$cur command=${words_[1]} position=$cword
  fi
  if [[ $current == -* ]]; then
    case $command in
      list | devices) words='--json --ids --help' ;;
      -*) words='--help --version' ;;
      *) words='--help' ;;
    esac
  elif ((position == 1)); then
    words='list devices volume mute unmute toggle output master default-output watch status help'
  else
    case $command:$position in
      volume:2 | mute:2 | unmute:2 | toggle:2 | output:2 | status:2) words=$(_plemoractl_ids list) ;;
      output:3) words="default $(_plemoractl_ids devices)" ;;
      default-output:2) words=$(_plemoractl_ids devices) ;;
      master:2) words='mute unmute 25% 50% 75% 100%' ;;
      volume:3) words='0% 25% 50% 75% 100%' ;;
      help:2) words='list devices volume mute unmute toggle output master default-output watch status' ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  if declare -F __ltrim_colon_completions >/dev/null; then
    __ltrim_colon_completions "$current"
  fi
}

complete -F _plemoractl plemoractl
