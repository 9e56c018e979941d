# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests that are shell scripts share. To be sourced by bash scripts after their options are
# set.
# shellcheck shell=bash
#
#   check DESCRIPTION COMMAND... prints whether the command says yes, after $group where that is set
#   equal IS SHOULD_BE           says yes, or shows the difference
#   refuses COMMAND...           says yes when the command does not; what it prints is dropped
#   eventually COMMAND...        polls, for up to $patience seconds, until the command says yes;
#                                likewise
#   skip DESCRIPTION REASON      stands in the place of a check
#   skip_all REASON              ends the script
#   finish_tests                 for the end of the script: its status says whether all went well
#
# A script that ends in any other way has failed. One that has something to clean up defines a
# function clean_up.

group=''  # of the checks that follow
failures=0
patience=20

tests_completed=''
end_of_tests() {
  if declare -F clean_up >/dev/null; then clean_up; fi
  [[ ! $tests_completed ]] || return 0
  printf 'not ok - %s failed, or the tests broke off\n' "$failures"
  exit 1  # said here because bash ends with status 0 after some errors
}
trap end_of_tests EXIT

finish_tests() {
  ((failures == 0)) || exit 1
  tests_completed=yes
}

check() {
  local description=${group:+$group: }$1
  shift
  if "$@"; then
    printf 'ok - %s\n' "$description"
  else
    printf 'not ok - %s\n' "$description"
    failures=$((failures + 1))
  fi
}

equal() {
  [[ $1 != "$2" ]] || return 0
  if [[ $1 == *$'\n'* && $2 == *$'\n'* ]]; then
    diff --label is --label 'should be' -U 1 <(cat -A <<<"$1") <(cat -A <<<"$2") | sed 's/^/#   /'
  else
    printf '#   is:        %q\n#   should be: %q\n' "$1" "$2"
  fi
  return 1
}

refuses() { ! "$@" >/dev/null 2>&1; }

eventually() {
  local deadline=$((SECONDS + patience))
  until "$@" >/dev/null 2>&1; do
    ((SECONDS < deadline)) || return 1
    sleep 0.02
  done
}

skip() { printf 'ok - %s # SKIP %s\n' "${group:+$group: }$1" "$2"; }

skip_all() {
  printf 'ok - everything # SKIP %s\n' "$1"
  tests_completed=yes
  exit
}
