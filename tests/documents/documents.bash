# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests of the documented commands share, beside the checks of tests/support/checks.bash.
# Every literal block of the documents has a label, a comment above it (see blocks.awk), that says
# what becomes of it:
#   run: sources      a session in the folder of the sources
#   run: sandbox      a session in scripts/sandbox --www examples/www bash
#   run: machine      a session in a booted machine, in a folder with the sources and the package
#   file: PATH        what a file of the machine holds from then on
#   shown: COMMAND    a part of what the command prints in the folder of the sources
#   elsewhere: FILE   what another test, FILE, runs or compares
# The lines of a session after "$ " are a user's commands and those after "# " root's; what is
# between them is what they print, on both outputs. "…" stands for anything. Where a session shows
# nothing but commands, only its status counts, as with a script, which has no such marks.
# To be sourced by bash scripts after their options are set.
# shellcheck shell=bash
#
#   $documents                  the documents, in the order in which they are read
#   read_documents FOLDER [DOCUMENT...]
#                               puts the blocks into FOLDER, and sets, for each, $places (FILE:LINE),
#                               $labels and $texts (files); false for mistakes in the documents
#   commands_of TEXT            prints a block's commands
#   as_shown TEXT OUT STATUS    says yes when this is how a block's run should end
#   like IS SHOULD_BE           says yes when one is the other, but for "…", or shows the difference

here=$(dirname "$(readlink -f -- "${BASH_SOURCE[0]}")")
root=${here%/*/*}
# shellcheck source-path=SCRIPTDIR source=../support/checks.bash
. "$root/tests/support/checks.bash"
export LC_ALL=C.UTF-8
export FAKETTY=1  # redis-cli prints as on a terminal

documents=("$root"/*.md "$root"/examples/*.md "$root"/docs/*.md "$root"/man/*.scd.in)

read_documents() {
  local folder=$1 number place label status=0
  shift
  (($#)) || set -- "${documents[@]}"
  mkdir -p -- "$folder"
  awk -v folder="$folder" -f "$here/blocks.awk" "$@" >"$folder/list" || status=$?
  places=() labels=() texts=()
  while IFS=$'\t' read -r number place label; do
    places+=("${place#"$root/"}")
    labels+=("$label")
    texts+=("$folder/$number.text")
  done <"$folder/list"
  return "$status"
}

is_session() { grep -q '^[$#] ' "$1"; }

# A backslash at the end of a command takes the next line in.
session_awk='{ is_command = goes_on || sub(/^[$#] /, ""); goes_on = is_command && /\\$/ }'
commands_of() {
  if is_session "$1"; then
    awk "$session_awk is_command" "$1"
  else
    cat -- "$1"
  fi
}

as_shown() {
  local answers=''
  ! is_session "$1" || answers=$(awk "$session_awk !is_command" "$1")
  if [[ $answers ]]; then
    like "$2" "$answers" && equal "status $3" 'status 0'
  else
    equal "status $3" 'status 0' || { tail -n 20 <<<"$2" | sed 's/^/#   /'; false; }
  fi
}

# It becomes a pattern, in which everything else stands for itself.
like() {
  local pattern
  pattern=$(sed 's/[^[:alnum:][:space:]…]/\\&/g; s/…/*/g' <<<"$2")
  # shellcheck disable=SC2053  # it is one
  [[ $1 == $pattern ]] || equal "$1" "$2"
}
