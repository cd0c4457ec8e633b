# SPDX-License-Identifier: Apache-2.0
# Completion of diagsrun for bash.
_diagsrun() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command="" i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      list | run | inspect)
        command=${COMP_WORDS[i]}
        break
        ;;
    esac
  done
  case $before in
    --root)
      mapfile -t COMPREPLY < <(compgen -d -- "$word")
      return
      ;;
    --log | --credentials | --ca | --client-cert | --client-key)
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
      ;;
    --log-level)
      mapfile -t COMPREPLY < <(compgen -W "error warning info trace" -- "$word")
      return
      ;;
    --progress)
      mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$word")
      return
      ;;
    --server)
      mapfile -t COMPREPLY < <(compgen -W "http:// https:// unix:///" -- "$word")
      compopt -o nospace 2>/dev/null
      return
      ;;
    --namespace | --device | --match | --label | --user | --connect-timeout | --request-timeout | \
      --total-timeout | --method-timeout | --max-reply)
      return
      ;;
  esac
  local words="--root --namespace --log --log-level --help"
  words+=" --server --user --credentials --ca --client-cert --client-key --insecure"
  words+=" --connect-timeout --request-timeout --total-timeout --method-timeout --max-reply"
  case $command in
    list) words+=" --json --device --match" ;;
    run) words+=" --json --all --device --match --label --progress" ;;
    inspect) words+=" --json" ;;
    *) words+=" --version list run inspect" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _diagsrun diagsrun
