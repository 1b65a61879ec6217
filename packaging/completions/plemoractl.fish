# Completion of plemoractl for fish.

complete -c plemoractl -f

function __plemoractl_operand --description 'Whether operand N of one of the commands is wanted'
    set -l words (commandline -opc)
    test (count $words) -eq (math $argv[1] + 1)
    and contains -- $words[2] $argv[2..-1]
end

complete -c plemoractl -n __fish_use_subcommand -s h -l help -d 'Help'
complete -c plemoractl -n __fish_use_subcommand -l version -d 'The version'
complete -c plemoractl -n __fish_use_subcommand -a list -d 'The apps that play, or did so lately'
complete -c plemoractl -n __fish_use_subcommand -a devices -d 'The output devices'
complete -c plemoractl -n __fish_use_subcommand -a volume -d "Set an app's volume"
complete -c plemoractl -n __fish_use_subcommand -a mute -d 'Silence an app and keep its volume'
complete -c plemoractl -n __fish_use_subcommand -a unmute -d 'Let it be heard again'
complete -c plemoractl -n __fish_use_subcommand -a toggle -d 'Mute or unmute an app'
complete -c plemoractl -n __fish_use_subcommand -a output -d 'Play an app on a device of its own'
complete -c plemoractl -n __fish_use_subcommand -a master -d "The default device's volume"
complete -c plemoractl -n __fish_use_subcommand -a default-output -d 'Make a device the default'
complete -c plemoractl -n __fish_use_subcommand -a watch -d 'Show apps and their levels live'
complete -c plemoractl -n __fish_use_subcommand -a status -d 'Say why an app is heard or not'
complete -c plemoractl -n __fish_use_subcommand -a help -d 'Explain a command'

complete -c plemoractl -n '__fish_seen_subcommand_from list devices' -l json -d 'For programs'
complete -c plemoractl -n '__fish_seen_subcommand_from list devices' -l ids -d 'The ids only'
complete -c plemoractl -n '__plemoractl_operand 1 volume mute unmute toggle output status' \
    -a '(plemoractl list --ids 2>/dev/null)'
complete -c plemoractl -n '__plemoractl_operand 1 default-output' \
    -a '(plemoractl devices --ids 2>/dev/null)'
complete -c plemoractl -n '__plemoractl_operand 2 output' \
    -a 'default (plemoractl devices --ids 2>/dev/null)'
complete -c plemoractl -n '__plemoractl_operand 1 master' -a 'mute unmute 25% 50% 75% 100%'
complete -c plemoractl -n '__plemoractl_operand 2 volume' -a '0% 25% 50% 75% 100%'
