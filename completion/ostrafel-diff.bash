# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# bash completion for ostrafel-diff [options] <StaticDataPath> <URI> [FileName]
#
# The arguments are completed as those of Ostrafel, whose completion tells how.

# @functions@

# --- Options -------------------------------------------------------------------------------------

# For an option that takes a value; 1 for any other.
_ostrafel_diff_offer_values() {
  case $1 in
    --against) _ostrafel_offer_paths '*.[jJ][sS][oO][nN]' ;;
    --www) _ostrafel_offer_paths / ;;
    --socket | --password-file) _ostrafel_offer_paths '*' ;;
    --format) _ostrafel_offer_words text json ;;
    --color) _ostrafel_offer_words auto always never ;;
    --ignore | --batch | --tcp) ;;  # only the user knows
    *) return 1 ;;
  esac
}

_ostrafel_diff_offer() {
  _ostrafel_offer_for_tool _ostrafel_diff_offer_values _ostrafel_offer_tree_argument \
    --update --against --ignore --no-extra --www --apply --batch --socket --tcp --password-file \
    --format --stat --color --quiet --help --version
}

_ostrafel_diff() { _ostrafel_complete "$1" _ostrafel_diff_offer; }

complete -F _ostrafel_diff ostrafel-diff
