#!/usr/bin/env bash
# check_manual.sh GROFF PROGRAM PAGES
# PAGES.1 is the program's manual page, PAGES.bash its completion.
set -euo pipefail
groff=$1 program=$2 pages=$3
name=$(basename "$pages")
faults=0
fault() { printf '%s\n' "$*"; faults=$((faults + 1)); }

warnings=$("$groff" -man -ww -Tascii "$pages.1" 2>&1 >/dev/null)
[ -z "$warnings" ] || fault "$warnings"

# shellcheck source=/dev/null
source "$pages.bash"
complete_words() { # WORD...: what may stand in place of the last word
  COMP_WORDS=("$name" "$@") COMP_CWORD=$# COMPREPLY=()
  "_${name}_complete"
}

# Every option of a command's help is on the page and is offered, and so is every command below it.
walk() { # COMMAND...
  local help option below offered
  help=$("$program" "$@" --help)
  complete_words "$@" ''
  offered=" ${COMPREPLY[*]} "
  while read -r option; do
    grep -qF -- "${option//-/\\-}" "$pages.1" || fault "the page lacks $option of '$*'"
    [[ $offered == *" $option "* ]] || fault "'$*' does not offer $option"
  done < <(grep -oE '^  (-.,)?--[a-z-]+' <<<"$help" | grep -oE -- '--[a-z-]+')
  for below in $(sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p' <<<"$help"); do
    [[ $offered == *" $below "* ]] || fault "'$*' does not offer $below"
    walk "$@" "$below"
  done
}
walk

offers() { # EXPECTED WORD...
  local expected=$1
  shift
  complete_words "$@"
  [ "${COMPREPLY[*]}" = "$expected" ] || fault "after '$*': '${COMPREPLY[*]}', not '$expected'"
}
offers 'GSR GAS' $([ "$name" = vqclient ] && echo login) --kind G
if [ "$name" = vqclient ]; then
  offers 'session' se
  offers 'session' --json se
  offers 'check' auth --server check ch # the server's name is no command
  offers '--interval' session --in
  offers '' login --int
  offers '' login --server ''
fi
cd "$(dirname "$pages")"
offers "$name.bash" "$([ "$name" = vqclient ] && echo login || echo --log)" \
  $([ "$name" = vqclient ] && echo -f) "$name.b"
exit "$((faults > 0))"
