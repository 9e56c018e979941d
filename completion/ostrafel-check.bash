# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# bash completion for ostrafel-check [options] <StaticDataPath> [URI] [FileName]
#
# The arguments are completed as those of Ostrafel, whose completion tells how. The names of rules
# come from the program itself.

# @functions@

# --- Options -------------------------------------------------------------------------------------

_ostrafel_check_options=(--www --select --ignore --baseline --write-baseline --fail-on --format
  --color --quiet --print-store --list-rules --explain --help --version)

# Offers what the last word of a list with commas may be.
_ostrafel_check_offer_rules() {
  local start='' name
  [[ $current != *,* ]] || start=${current%,*},
  for name in "$@" $(command ostrafel-check --list-rules 2>/dev/null | cut -d ' ' -f 1); do
    _ostrafel_offer "$start$name"
  done
}

_ostrafel_check_offer_words() {
  local word
  for word; do
    _ostrafel_offer "$word"
  done
}

# For an option that takes a value; 1 for any other.
_ostrafel_check_offer_values() {
  case $1 in
    --www) _ostrafel_offer_paths / ;;
    --baseline | --write-baseline) _ostrafel_offer_paths '*' ;;
    --select | --ignore) _ostrafel_check_offer_rules all default ;;
    --explain) _ostrafel_check_offer_rules ;;
    --fail-on) _ostrafel_check_offer_words error warning note ;;
    --format) _ostrafel_check_offer_words text json sarif github ;;
    --color) _ostrafel_check_offer_words auto always never ;;
    *) return 1 ;;
  esac
}

_ostrafel_check_takes_value() {
  local -a COMPREPLY=()
  local current=$'\n'  # begins nothing that is offered
  _ostrafel_check_offer_values "$1"
}

# --- The line ------------------------------------------------------------------------------------

# shellcheck disable=SC2154  # _ostrafel_complete sets the words
_ostrafel_check_arguments() {
  local word option='' ended='' real_path='' start
  local -a arguments=()
  for word in "${words[@]:1:${#words[@]}-2}"; do
    if [[ $option ]]; then
      option=''
    elif [[ $ended || $word != -?* ]]; then
      arguments+=("$word")
    elif [[ $word == -- ]]; then
      ended=yes
    elif _ostrafel_check_takes_value "$word"; then
      option=$word
    fi
  done
  if [[ ! $option && ! $ended && $current == --*=* ]]; then
    # readline replaces what is behind the sign.
    start=${current%%=*}=
    option=${start%=} current=${current#"$start"}
    kept=$((kept < ${#start} ? 0 : kept - ${#start}))
  fi
  ((${#arguments[@]} == 0)) || _ostrafel_find_real_path "${arguments[0]}"
  if [[ $option ]]; then
    _ostrafel_check_offer_values "$option"
  elif [[ ! $ended && $current == -* ]]; then
    _ostrafel_check_offer_words "${_ostrafel_check_options[@]}"
  else
    case ${#arguments[@]} in
      0) _ostrafel_offer_paths '*.[jJ][sS][oO][nN]' ;;
      1) _ostrafel_offer_uri "$real_path" ;;
      2) _ostrafel_offer_names "$real_path" ;;
    esac
  fi
}

_ostrafel_check() { _ostrafel_complete "$1" _ostrafel_check_arguments; }

complete -F _ostrafel_check ostrafel-check
