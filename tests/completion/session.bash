# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# shellcheck disable=SC2016  # dollars in single quotes are for the shell that is typed at

# For the tests of completion: a real interactive shell on a terminal of its own, to which keys are
# typed. What it completes is seen in what a command then gets as its arguments: Ostrafel and its
# tools are functions there that write them down.

# shellcheck source-path=SCRIPTDIR source=../support/checks.bash
. "${BASH_SOURCE[0]%/*}/../support/checks.bash"

work=$(mktemp -d)
session_pid=''
clean_up() {
  [[ ! $session_pid ]] || kill "$session_pid" 2>/dev/null || :
  rm -rf -- "${work:?}"
}

# The folder of the cases: trees and files with names and contents of all kinds.
make_folder() {
  local folder=$1
  mkdir -p "$folder"/{tree/Systems/Node1,overlay/Systems/Node1,'my tree'/Systems,empty,bare,odd,.hidden}
  mkdir -p "$folder"/{"it's \"\$odd\"",a:b/c,nested/v1}
  # The first "@odata.id" is another object's, and a text has one in it.
  printf '\xEF\xBB\xBF{\n"Links": {"Up": {"@odata.id": "/wrong"}, "L": [{"@odata.id": "/wrong"}]},
    "Text": "\\"@odata.id\\": \\"/wrong\\"",\n "@odata.id"\n:\n"/redfish/v2", "A": 1}\n' \
    >"$folder/tree/index.json"
  echo '{"@odata.id": "/redfish/v2/Systems"}' >"$folder/tree/Systems/index.json"
  echo '{"@odata.id":"/redfish/v2/Systems/Node1"}' >"$folder/tree/Systems/Node1/index.json"
  echo '{}' >"$folder/tree/Systems/Node1/Patch.JSON"
  echo '{}' >"$folder/tree/Systems/other file.json"
  # Only a file further down tells.
  echo '{"@odata.id":"\/site\/v3\/Systems\/Node1\/","A":1}' >"$folder/overlay/Systems/Node1/index.json"
  printf '{"@odata.id": "/with blank/$(touch %s/ran)`touch %s/ran`'"'"'x", "A": 1}\n' "$folder" "$folder" \
    >"$folder/odd/index.json"
  echo '{"@odata.id": "/my/tree", "B": 2}' >"$folder/my tree/index.json"
  echo '{"@odata.id": "/redfish/v1/", "B": 2}' >"$folder/nested/v1/index.json"
  echo '{"v1": "/redfish/v1/"}' >"$folder/nested/index.json"
  echo '{"@odata.id": "/single/file", "C": 3}' >"$folder/single.json"
  echo '[{"@odata.id": "/wrong"}]' >"$folder/bare/index.json"
  echo '{"@odata.id": "/colon"}' >"$folder/a:b/c/index.json"
  echo '{"@odata.id": "/quotes"}' >"$folder/it's \"\$odd\"/index.json"
  echo '{"@odata.id": "/hidden"}' >"$folder/.hidden/index.json"
  printf '{"@odata.id": "/a\\nb", "D": 1}\n' >"$folder/UPPER.JSON"
  echo 'not for Ostrafel' >"$folder/notes.txt"
}

# Trees of 16 files of 64 KiB, the most that is looked at, of what a reader may be slow at; in each
# but the last, which is a long collection as it may really be, no file tells a URI.
make_slow_trees() {
  local folder=$1 name start pattern
  while read -r name start pattern; do
    mkdir -p "$folder/$name"/{1..15}
    while ((${#pattern} < 65536)); do pattern+=$pattern; done
    pattern=$start$pattern
    printf '%s' "${pattern:0:65536}" | tee "$folder/$name"/{,{1..15}/}index.json >/dev/null
  done <<'TREES'
brackets {"A": [
pairs {"A": []
objects { "A":{},
quotes {"A": "
texts {"A":[ "",
one-text {"A":" a
backslashes {"A":" \\\\
escaped-quotes {"A":" \"
ids { "@odata.id":{},
long-id {"@odata.id":" \/
TREES
  mkdir "$folder/collection"
  {
    printf '{\n    "Members": [\n'
    printf '        {\n            "@odata.id": "/v4/%s"\n        },\n' {1..1100}
    printf '        {}\n    ],\n    "@odata.id": "/v4"\n}\n'
  } >"$folder/collection/index.json"
}

# Lines for the start of the shell.
make_commands() {
  local command
  for command in Ostrafel ostrafel-{check,diff,export}; do
    printf '%s() { printf "<%%s>" "$@" >"%s/new" && mv "%s/new" "%s/arguments"; }\n' \
      "$command" "$work" "$work" "$work"
  done
  # shellcheck disable=SC2154  # the test that includes this has it
  printf 'PATH=%q:$PATH\n' "$installed/bin"  # the program tells its rules
}

# start_session COMMAND: starts a shell. What it says is in $work/typescript.
start_session() {
  rm -f "$work/keys"
  mkfifo "$work/keys"
  TERM=dumb script -qefc "$1" "$work/typescript" <"$work/keys" >/dev/null 2>&1 &
  session_pid=$!
  exec {keys}>"$work/keys"
}

end_session() {
  printf '\025exit\n' >&"$keys"
  exec {keys}>&-
  wait "$session_pid" || :
  session_pid=''
}

# type_line LINE: types it, with what stands for keys in it, and a line end. Then $typed holds the
# arguments that the command got, each in angle brackets.
type_line() {
  local line=$1
  typed='(nothing)'
  rm -f "$work/arguments"
  line=${line//'<TAB>'/$'\t'}
  line=${line//'<ALL>'/$all_key}
  printf '%s\n' "$line" >&"$keys"
  if eventually test -e "$work/arguments"; then
    typed=$(<"$work/arguments")
  else
    printf '\003\025\n' >&"$keys"  # out of an open quote
    printf '#   the terminal shows:\n'
    tail -n 5 "$work/typescript" | tr -d '\r\a\033' | sed 's/^/#   /'
  fi
}

# run_cases TABLE: each line of the table holds what is typed and, behind =>, the arguments. Lines
# that begin with # are comments.
run_cases() {
  local line
  while IFS= read -r line; do
    [[ $line && $line != '#'* ]] || continue
    type_line "${line%% => *}"
    check "${line%% => *}" equal "$typed" "${line#* => }"
  done <<<"$1"
}

# What every shell must do. <TAB> completes; <ALL> puts in all that is offered.
readonly common_cases='
Ostrafel C<TAB> => <create>
Ostrafel up<TAB> => <update>
Ostrafel CREATE<TAB> => <create>
Ostrafel x<TAB> => <x>
Ostrafel <ALL> => <create><update>
# Paths: folders and .json files, and nothing else.
Ostrafel create tr<TAB> => <create><tree/>
Ostrafel create tree/Sys<TAB>N<TAB>P<TAB> => <create><tree/Systems/Node1/Patch.JSON>
Ostrafel create UPP<TAB> => <create><UPPER.JSON>
Ostrafel create not<TAB> => <create><not>
Ostrafel create my<TAB> => <create><my tree/>
Ostrafel create my\ tr<TAB>Sys<TAB> => <create><my tree/Systems/>
Ostrafel create it<TAB>in<TAB> => <create><it'"'"'s "$odd"/index.json>
Ostrafel create ./si<TAB> => <create><./single.json>
Ostrafel create .hid<TAB>ind<TAB> => <create><.hidden/index.json>
Ostrafel create tree/Systems/<ALL> => <create><tree/Systems/Node1><tree/Systems/index.json><tree/Systems/other file.json>
# URIs: what the tree says.
Ostrafel create tree <TAB> => <create><tree></redfish/v2>
Ostrafel create tree/ /red<TAB> => <create><tree/></redfish/v2>
Ostrafel create tree "/red<TAB> => <create><tree></redfish/v2>
Ostrafel create tree /no<TAB> => <create><tree></no>
Ostrafel create tree/Systems <TAB> => <create><tree/Systems></redfish/v2/Systems>
Ostrafel create overlay <TAB> => <create><overlay></site/v3>
Ostrafel create nested <TAB> => <create><nested></redfish>
Ostrafel create my\ tree <TAB> => <create><my tree></my/tree>
Ostrafel create "my tree" <TAB> => <create><my tree></my/tree>
Ostrafel create "$FOLDER/tree" <TAB> => <create><@FOLDER@/tree></redfish/v2>
Ostrafel create "${FOLDER}/tree" <TAB> => <create><@FOLDER@/tree></redfish/v2>
Ostrafel create ~/tree <TAB> => <create><@FOLDER@/tree></redfish/v2>
Ostrafel update single.json <TAB> => <update><single.json></single/file>
Ostrafel update tree/Systems/Node1/index.json <TAB> => <update><tree/Systems/Node1/index.json></redfish/v2/Systems/Node1>
Ostrafel create a:b/c <TAB> => <create><a:b/c></colon>
# Nothing to be read: where Redfish begins.
Ostrafel create empty <TAB> => <create><empty></redfish/v1>
Ostrafel create bare <TAB> => <create><bare></redfish/v1>
Ostrafel create none <TAB> => <create><none></redfish/v1>
Ostrafel create UPPER.JSON <TAB> => <create><UPPER.JSON></redfish/v1>
# Texts from files are quoted, not run.
Ostrafel create odd <TAB> => <create><odd></with blank/$(touch @FOLDER@/ran)`touch @FOLDER@/ran`'"'"'x>
Ostrafel create odd "/wi<TAB> => <create><odd></with blank/$(touch @FOLDER@/ran)`touch @FOLDER@/ran`'"'"'x>
# File names: of a folder only.
Ostrafel update tree / <ALL> => <update><tree></><Patch.JSON><index.json><other file.json>
Ostrafel update tree / Pa<TAB> => <update><tree></><Patch.JSON>
Ostrafel update tree / oth<TAB> => <update><tree></><other file.json>
Ostrafel update "my tree" /my ind<TAB> => <update><my tree></my><index.json>
Ostrafel update single.json / ind<TAB> => <update><single.json></><ind>
Ostrafel update tree / index.json ind<TAB> => <update><tree></><index.json><ind>
'

# Likewise, for ostrafel-check.
readonly check_cases='
ostrafel-check --form<TAB> js<TAB> tr<TAB> => <--format><json><tree/>
ostrafel-check --l<TAB> => <--list-rules>
ostrafel-check --pri<TAB> tree <TAB> => <--print-store><tree></redfish/v2>
# Values, behind an equals sign too.
ostrafel-check --fail-on <ALL> => <--fail-on><error><note><warning>
ostrafel-check --color=a<TAB> => <--color=a>
ostrafel-check --color=al<TAB> => <--color=always>
ostrafel-check --fail-on=w<TAB> tr<TAB> => <--fail-on=warning><tree/>
ostrafel-check --explain redfish-c<TAB> => <--explain><redfish-count>
ostrafel-check --select load-s<TAB> => <--select><load-syntax>
ostrafel-check --select al<TAB> tr<TAB> => <--select><all><tree/>
ostrafel-check --ignore key-glob,load-s<TAB> => <--ignore><key-glob,load-syntax>
ostrafel-check --ignore=key-glob,def<TAB> => <--ignore=key-glob,default>
# Files: folders for --www, any file for a baseline.
ostrafel-check --www over<TAB> tr<TAB> => <--www><overlay/><tree/>
ostrafel-check --www sing<TAB> => <--www><sing>
ostrafel-check --baseline not<TAB> tr<TAB> => <--baseline><notes.txt><tree/>
ostrafel-check --write-baseline=not<TAB> => <--write-baseline=notes.txt>
ostrafel-check --www=my\ tr<TAB>Sys<TAB> => <--www=my tree/Systems/>
# The arguments, wherever options stand.
ostrafel-check tr<TAB> => <tree/>
ostrafel-check not<TAB> => <not>
ostrafel-check tree <TAB> => <tree></redfish/v2>
ostrafel-check my\ tree <TAB> => <my tree></my/tree>
ostrafel-check ~/tree <TAB> => <@FOLDER@/tree></redfish/v2>
ostrafel-check empty <TAB> => <empty></redfish/v1>
ostrafel-check -q --color never tree <TAB> => <-q><--color><never><tree></redfish/v2>
ostrafel-check tree --www www <TAB> => <tree><--www><www></redfish/v2>
ostrafel-check -- tree <TAB> => <--><tree></redfish/v2>
ostrafel-check odd <TAB> => <odd></with blank/$(touch @FOLDER@/ran)`touch @FOLDER@/ran`'"'"'x>
ostrafel-check tree / Pa<TAB> => <tree></><Patch.JSON>
ostrafel-check tree / index.json tr<TAB> => <tree></><index.json><tr>
'

# And for ostrafel-diff.
readonly diff_cases='
ostrafel-diff --up<TAB> --form<TAB> js<TAB> tr<TAB> => <--update><--format><json><tree/>
ostrafel-diff --app<TAB> tree <TAB> => <--apply><tree></redfish/v2>
ostrafel-diff --color=al<TAB> => <--color=always>
# Another tree; files; what only the user knows.
ostrafel-diff --against ov<TAB> tr<TAB> => <--against><overlay/><tree/>
ostrafel-diff --against=not<TAB> => <--against=not>
ostrafel-diff --socket not<TAB> tr<TAB> => <--socket><notes.txt><tree/>
ostrafel-diff --password-file=not<TAB> => <--password-file=notes.txt>
ostrafel-diff --www sing<TAB> => <--www><sing>
ostrafel-diff --tcp tr<TAB> tr<TAB> => <--tcp><tr><tree/>
ostrafel-diff --batch 5 --ignore t<TAB> tree <TAB> => <--batch><5><--ignore><t><tree></redfish/v2>
# The arguments.
ostrafel-diff -q tree / Pa<TAB> => <-q><tree></><Patch.JSON>
ostrafel-diff odd <TAB> => <odd></with blank/$(touch @FOLDER@/ran)`touch @FOLDER@/ran`'"'"'x>
'

# And for ostrafel-export.
readonly export_cases='
ostrafel-export --f<TAB> --wi<TAB> /r<TAB> tr<TAB> => <--force><--windows-names></redfish/v1><tree/>
ostrafel-export <TAB> => </redfish/v1>
ostrafel-export /x => </x>
# A folder, and no file; none where one resource is printed.
ostrafel-export /x sing<TAB> => </x><sing>
ostrafel-export /x my\ tr<TAB>Sys<TAB> => </x><my tree/Systems/>
ostrafel-export -- /x tr<TAB> => <--></x><tree/>
ostrafel-export --pri<TAB> /r<TAB> => <--print></redfish/v1>
ostrafel-export --print /x tr<TAB> => <--print></x><tr>
# Files; what only the user knows.
ostrafel-export --socket not<TAB> => <--socket><notes.txt>
ostrafel-export --password-file=not<TAB> /r<TAB> => <--password-file=notes.txt></redfish/v1>
ostrafel-export --www sing<TAB> => <--www><sing>
ostrafel-export --tcp tr<TAB> /r<TAB> => <--tcp><tr></redfish/v1>
'

# The common cases for a folder; those of the tools only where they are installed.
cases_in() {
  printf '%s' "${common_cases//'@FOLDER@'/$1}"
  [[ ! -e $installed/bin/ostrafel-check ]] ||
    printf '%s' "${check_cases//'@FOLDER@'/$1}${diff_cases//'@FOLDER@'/$1}$export_cases"
}
