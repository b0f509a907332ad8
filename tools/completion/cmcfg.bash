# Bash completion of cmcfg: verbs, then each verb's options and actions.
_cmcfg() {
  local cur prev verb i
  cur="${COMP_WORDS[COMP_CWORD]}"
  prev="${COMP_WORDS[COMP_CWORD-1]}"
  case "$prev" in
    --root|--log-dir) COMPREPLY=($(compgen -d -- "$cur")); return ;;
    --edited) COMPREPLY=($(compgen -f -- "$cur")); return ;;
    --call-type) COMPREPLY=($(compgen -W "number sip pstn" -- "$cur")); return ;;
  esac
  for ((i = 1; i < COMP_CWORD; i++)); do
    case "${COMP_WORDS[i]}" in
      --root|--log-dir|--edited|--call-type) ((i++)) ;;
      -*) ;;
      *) verb="${COMP_WORDS[i]}"; break ;;
    esac
  done
  local common="--root --log-dir --help"
  case "$verb" in
    "") COMPREPLY=($(compgen -W "show ext dump diff check forward block unblock contact port --root --log-dir --help --version" -- "$cur")) ;;
    show|ext|dump|check) COMPREPLY=($(compgen -W "$common --json" -- "$cur")) ;;
    diff) COMPREPLY=($(compgen -d -- "$cur")) ;;
    forward) COMPREPLY=($(compgen -W "$common on off toggle set clear --replace --dry-run" -- "$cur")) ;;
    block|unblock) COMPREPLY=($(compgen -W "$common --outgoing --call-type --dry-run" -- "$cur")) ;;
    contact) COMPREPLY=($(compgen -W "$common add change erase --call-type --edited --dry-run" -- "$cur")) ;;
    port) COMPREPLY=($(compgen -W "$common --edited --dry-run" -- "$cur")) ;;
  esac
}
complete -F _cmcfg cmcfg
