# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# Makes what ctest prints fit 80 columns.
# shellcheck shell=bash

# show_progress: reads what ctest prints while it runs. A line a test; on a terminal, one for all that
# pass. What failed tests print stays as it is; ctest's list of skipped ones gives no reasons, and is
# left to skipped_tests.awk.
show_progress() {
  local line in_list='' passing='' erase=''
  [[ ! -t 1 ]] || erase=$'\r\e[K'
  local -r result='^ *([0-9]+/[0-9]+) +Test +#[0-9]+: (.*) \.+ *(\**[A-Z].*) +([0-9.]+) sec'
  while IFS= read -r line || [[ $line ]]; do
    if [[ $line =~ $result ]]; then
      printf -v line '%9s %-7s %6.2f s  %s' "${BASH_REMATCH[1]}" "${BASH_REMATCH[3]#\*\*\*}" \
        "${BASH_REMATCH[4]}" "${BASH_REMATCH[2]}"
      ((${#line} <= 79)) || line=${line:0:78}…
      printf '%s%s' "${passing:+$erase}" "$line"
      if [[ $erase && ${BASH_REMATCH[3]} == Passed* ]]; then passing=yes; else passing='' && echo; fi
      continue
    fi
    case $line in
      ' '*'Start '*[0-9]': '*) continue ;;
      'The following tests did not run:') in_list=skipped ;;
      'The following tests FAILED:') in_list=failed ;;
      $'\t'*) ;;
      *) in_list='' ;;
    esac
    [[ $in_list != skipped ]] || continue
    [[ ! $passing ]] || printf '%s' "$erase"
    passing=''
    [[ $in_list != failed || ${#line} -le 70 ]] || line=${line:0:69}…
    printf '%s\n' "$line"
  done
}
