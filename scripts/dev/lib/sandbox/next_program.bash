# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# For the programs of this folder, which stand first on the PATH of a sandbox.
# shellcheck shell=bash

# next_program NAME...: sets $program to the path of the first of these that the PATH has after this
# folder. What comes before may be another's, who calls us; it is off the PATH from here on.
next_program() {
  local name path=:$PATH:
  path=${path##*":${0%/*}:"}
  path=${path#:}
  PATH=${path%:}
  for name in "$@"; do
    # shellcheck disable=SC2034  # for the caller
    ! program=$(type -P -- "$name") || return 0
  done
  printf '%s: %s is not installed (scripts/bootstrap installs redis-tools)\n' "${0##*/}" "$1" >&2
  return 1
}
