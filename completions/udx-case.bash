# Completes the commands of udx-case, and paths behind them.
_udx_case() {
  local cur prev words cword
  _init_completion || return
  if [ "$cword" = 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W 'run load union body events sheet report --help' -- "$cur")
  else
    _filedir
  fi
} && complete -F _udx_case udx-case
