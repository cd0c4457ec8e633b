# SPDX-License-Identifier: Apache-2.0
# Completion of diagsrun for bash.

# The installed providers whose names begin with $1, below the root that the command line or the
# environment names, else below that of the program. A name that the shell would read as something
# else is left out.
_diagsrun_providers() {
  local root=${DIAGSRUNNER_ROOT-} program i
  for ((i = 1; i < COMP_CWORD - 1; i++)); do
    [[ ${COMP_WORDS[i]} == --root ]] || continue
    # Bash takes the equals sign of --root=DIR for a word.
    [[ ${COMP_WORDS[i + 1]} == = ]] && ((i++))
    root=${COMP_WORDS[i + 1]-}
  done
  if [[ -z $root ]]; then
    program=$(type -P diagsrun) && program=$(readlink -f -- "$program") || return
    root=${program%/*/*}/lib/diagsrunner
  fi
  for i in "$root"/providers/*/; do
    i=${i%/}
    i=${i##*/}
    [[ $i == "$1"* && $i != *[!A-Za-z0-9._+-]* ]] && printf '%s\n' "$i"
  done
}

_diagsrun() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command="" action="" i
  COMPREPLY=()
  # --log=x arrives as three words.
  if [[ $word == = ]]; then
    word=""
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    case $command:${COMP_WORDS[i]} in
      :list | :run | :inspect | :provider) command=${COMP_WORDS[i]} ;;
      provider:add | provider:remove | provider:list | provider:check)
        action=${COMP_WORDS[i]}
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
    --namespace | --device | --match | --label | --name | --user | --connect-timeout | \
      --request-timeout | --total-timeout | --method-timeout | --max-reply)
      return
      ;;
  esac
  if [[ $word != -* ]]; then
    case $action in
      add)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        compopt -o filenames 2>/dev/null
        return
        ;;
      remove)
        mapfile -t COMPREPLY < <(_diagsrun_providers "$word")
        return
        ;;
      check)
        mapfile -t COMPREPLY < <(
          _diagsrun_providers "$word"
          compgen -f -- "$word"
        )
        compopt -o filenames 2>/dev/null
        return
        ;;
    esac
  fi
  local words="--root --namespace --log --log-level --help"
  words+=" --server --user --credentials --ca --client-cert --client-key --insecure"
  words+=" --connect-timeout --request-timeout --total-timeout --method-timeout --max-reply"
  case $command$action in
    list) words+=" --json --device --match" ;;
    run) words+=" --json --all --device --match --label --progress" ;;
    inspect) words+=" --json" ;;
    provider) words+=" add remove list check" ;;
    provideradd) words+=" --json --name --replace --force" ;;
    providerremove) words+=" --json --force" ;;
    provider*) words+=" --json" ;;
    *) words+=" --version list run inspect provider" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _diagsrun diagsrun
