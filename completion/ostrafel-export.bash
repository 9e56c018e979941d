# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# bash completion for ostrafel-export [options] <URI> <Directory>
#                     and for ostrafel-export --print [options] <URI>

# @functions@

# --- Options -------------------------------------------------------------------------------------

# For an option that takes a value; 1 for any other.
_ostrafel_export_offer_values() {
  case $1 in
    --www) _ostrafel_offer_paths / ;;
    --socket | --password-file) _ostrafel_offer_paths '*' ;;
    --tcp) ;;  # only the user knows
    *) return 1 ;;
  esac
}

# --- Arguments -----------------------------------------------------------------------------------

# The URI is that at which Redfish begins: asking the server for others is not for a completion.
# shellcheck disable=SC2154  # _ostrafel_offer_for_tool has the arguments before, and the words
_ostrafel_export_offer_argument() {
  case ${#arguments[@]} in
    0) _ostrafel_offer /redfish/v1 ;;
    1) [[ " ${words[*]} " == *' --print '* ]] || _ostrafel_offer_paths / ;;
  esac
}

_ostrafel_export_offer() {
  _ostrafel_offer_for_tool _ostrafel_export_offer_values _ostrafel_export_offer_argument \
    --force --print --windows-names --www --socket --tcp --password-file --quiet --help --version
}

_ostrafel_export() { _ostrafel_complete "$1" _ostrafel_export_offer; }

complete -F _ostrafel_export ostrafel-export
