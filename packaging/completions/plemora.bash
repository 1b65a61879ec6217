# Completion of plemora for bash.

_plemora() {
  mapfile -t COMPREPLY < <(compgen -W '--no-ui --open --setup --log-levels -demo --screenshots --replace-sound \
    --restore-sound --prime-controls --preferences --preferences-host --help --version' -- \
    "${COMP_WORDS[COMP_CWORD]}")
}

complete -F _plemora plemora
