#!/usr/bin/env bash
# check_manual.sh GROFF PROGRAM PAGES
# PAGES.1 is the program's manual page, PAGES.bash, PAGES.zsh and PAGES.fish its completions. Those for
# zsh and fish are tried where the shell is there.
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
    grep -qe "flags='.*$option" "$pages.zsh" || fault "the completion for zsh lacks $option"
    grep -qF -- "\"__${name}_at '$name${*:+ $*}'\"" <(grep -e " -l ${option#--} " "$pages.fish") ||
      fault "the completion for fish lacks $option of '$*'"
  done < <(grep -oE '^  (-.,)?--[a-z-]+' <<<"$help" | grep -oE -- '--[a-z-]+')
  for below in $(sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p' <<<"$help"); do
    [[ $offered == *" $below "* ]] || fault "'$*' does not offer $below"
    walk "$@" "$below"
  done
}
walk

if command -v fish >/dev/null; then
  in_fish() { # LINE: what fish offers for the end of it
    HOME=$(mktemp -d) fish --no-config -c "source '$pages.fish'; complete -C '$1'" | cut -f1 | xargs
  }
  line="$name --kind GA"
  [ "$name" != vqclient ] || line='vqclient login --kind GA'
  [ "$(in_fish "$line")" = GAS ] || fault "fish offers '$(in_fish "$line")' for '$line'"
  if [ "$name" = vqclient ]; then
    line='vqclient auth --server central ch'
    [ "$(in_fish "$line")" = check ] || fault "fish offers '$(in_fish "$line")' for '$line'"
  fi
fi
if command -v zsh >/dev/null; then
  in_zsh() { # WORD...: what zsh offers in place of the last word, among other words
    zsh -f -c 'compadd() { shift; print -- "$@"; }; _files() { print FILES; }
      pages=$1; shift; words=("$@"); CURRENT=$#; source "$pages"' zsh "$pages.zsh" "$name" "$@"
  }
  if [ "$name" = vqclient ]; then
    [[ " $(in_zsh auth --server central '') " == *' check '* ]] || fault "zsh does not offer check"
    [ "$(in_zsh login --kind '')" = 'GSR GAS QIMS Forecast CMS SLS' ] || fault 'zsh offers no kinds'
    [ "$(in_zsh login -f '')" = FILES ] || fault 'zsh offers no files'
  else
    [[ " $(in_zsh '') " == *' --naming-service '* ]] || fault 'zsh does not offer --naming-service'
  fi
fi

offers() { # EXPECTED WORD...
  local expected=$1
  shift
  complete_words "$@"
  [ "${COMPREPLY[*]}" = "$expected" ] || fault "after '$*': '${COMPREPLY[*]}', not '$expected'"
}
offers 'GSR GAS' $([ "$name" = vqclient ] && echo login) --kind G
if [ "$name" = vqclient ]; then
  offers 'session' ses
  offers 'session' --json ses
  offers 'check' auth --server check ch # the server's name is no command
  offers '--interval' session --in
  offers '' login --int
  offers '' login --server ''
  offers 'table' auth check ta
  offers 'naming' config set nam
fi
cd "$(dirname "$pages")"
offers "$name.bash" "$([ "$name" = vqclient ] && echo login || echo --log)" \
  $([ "$name" = vqclient ] && echo -f) "$name.b"
exit "$((faults > 0))"
