# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# bash completion for Ostrafel <Action> <StaticDataPath> <URI> [FileName]
#
# The action is completed whatever its case; the path to folders and .json files; the file name to
# the names of .json files that lie in the tree's folders. For the URI one word is offered: the one
# under which the tree's files get the keys that they name themselves. It is taken from the first
# file, from the top folder down, whose root object has an "@odata.id": that id, less the path of
# the file's folder below the top folder. When no file tells, it is /redfish/v1, where Redfish
# services begin.
#
# Nothing that files or folders hold is ever run, and only so many of them are looked at: a tree may
# have many thousands. Needs bash 4.4 and nothing of bash-completion.

# @functions@

# --- The arguments -------------------------------------------------------------------------------

_ostrafel_offer_action() {
  local action typed=${current,,} current=''
  for action in create update; do
    [[ $action != "$typed"* ]] || _ostrafel_offer "$action"
  done
}

# shellcheck disable=SC2154  # _ostrafel_complete sets the words
_ostrafel_arguments() {
  local real_path=''
  ((${#words[@]} <= 3)) || _ostrafel_find_real_path "${words[2]}"
  case ${#words[@]} in
    2) _ostrafel_offer_action ;;
    3) _ostrafel_offer_paths '*.[jJ][sS][oO][nN]' ;;
    4) _ostrafel_offer_uri "$real_path" ;;
    5) _ostrafel_offer_names "$real_path" ;;
  esac
}

_ostrafel() { _ostrafel_complete "$1" _ostrafel_arguments; }

complete -F _ostrafel Ostrafel
