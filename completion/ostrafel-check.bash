# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# bash completion for ostrafel-check [options] <StaticDataPath> [URI] [FileName]
#
# The arguments are completed as those of Ostrafel, whose completion tells how. The names of rules
# come from the program itself.

# @functions@

# --- Options -------------------------------------------------------------------------------------

# Offers what the last word of a list with commas may be.
_ostrafel_check_offer_rules() {
  local start='' name
  # shellcheck disable=SC2154  # _ostrafel_complete sets the word
  [[ $current != *,* ]] || start=${current%,*},
  for name in "$@" $(command ostrafel-check --list-rules 2>/dev/null | cut -d ' ' -f 1); do
    _ostrafel_offer "$start$name"
  done
}

# For an option that takes a value; 1 for any other.
_ostrafel_check_offer_values() {
  case $1 in
    --www) _ostrafel_offer_paths / ;;
    --baseline | --write-baseline) _ostrafel_offer_paths '*' ;;
    --select | --ignore) _ostrafel_check_offer_rules all default ;;
    --explain) _ostrafel_check_offer_rules ;;
    --fail-on) _ostrafel_offer_words error warning note ;;
    --format) _ostrafel_offer_words text json sarif github ;;
    --color) _ostrafel_offer_words auto always never ;;
    *) return 1 ;;
  esac
}

_ostrafel_check_offer() {
  _ostrafel_offer_for_tool _ostrafel_check_offer_values _ostrafel_offer_tree_argument \
    --www --select --ignore --baseline --write-baseline --fail-on --format --color --quiet \
    --print-store --list-rules --explain --help --version
}

_ostrafel_check() { _ostrafel_complete "$1" _ostrafel_check_offer; }

complete -F _ostrafel_check ostrafel-check
