# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash

# What the completions for Ostrafel and its tools share.

# --- The line ------------------------------------------------------------------------------------

# Takes the line up to the cursor apart as the shell would, without running anything; of the
# expansions, only those of a variable by its mere name are made. Sets the caller's
#   words     the words, the last of which is to be completed
#   quote     the quote that is still open in it, if any
#   kept      how many of its characters stand before what readline will replace
#   redirects whether it is the file of a redirection
_ostrafel_split() {
  local line=$1 c word='' has_word='' kept_before=0 backslash=$'\\'
  local -i i
  words=() quote='' kept=0 redirects=''
  for ((i = 0; i < ${#line}; ++i)); do
    c=${line:i:1}
    if [[ $c == '$' && $quote != "'" &&
      ${line:i} =~ ^\$(([A-Za-z_][A-Za-z_0-9]*)|\{([A-Za-z_][A-Za-z_0-9]*)\}) ]]; then
      c=${BASH_REMATCH[2]}${BASH_REMATCH[3]}
      word+=${!c-}
      has_word=yes
      i+=${#BASH_REMATCH[0]}-1
    elif [[ $quote && $c == "$quote" ]]; then
      quote='' kept=$kept_before
    elif [[ $c == "$backslash" && $quote != "'" &&
      (! $quote || ${line:i+1:1} == [\$\`\"\\]) ]]; then
      i+=1
      word+=${line:i:1}
      has_word=yes
    elif [[ $quote ]]; then
      word+=$c
    elif [[ $c == [\'\"] ]]; then
      quote=$c has_word=yes kept_before=$kept kept=${#word}
    elif [[ $c == [[:blank:]\<\>] ]]; then
      # A redirection's file is no argument, nor is the number before its sign.
      if [[ $has_word ]]; then
        [[ $redirects || ($c == [\<\>] && $word != *[!0-9]*) ]] || words+=("$word")
        redirects=''
      fi
      [[ $c == [[:blank:]] ]] || redirects=yes
      word='' has_word='' kept=0
    else
      word+=$c
      has_word=yes
      # Unquoted, these break a word for readline, though not for the shell.
      [[ $COMP_WORDBREAKS != *"$c"* ]] || kept=${#word}
    fi
  done
  words+=("$word")
}

# Offers a word, quoted as the line needs it.
_ostrafel_offer() {
  local text=${1:kept} character
  [[ $1 == "$current"* && $1 != *[[:cntrl:]]* ]] || return 0
  case $quote in
    '') printf -v text %q "$text" ;;
    "'") text=${text//"'"/"'\\''"} ;;
    *)
      # The backslash first; and in variables, as a replacement has a mind of its own about them.
      for character in $'\\' '"' '$' '`'; do
        text=${text//"$character"/$'\\'"$character"}
      done
      ;;
  esac
  COMPREPLY+=("$text")
}

# --- The tree ------------------------------------------------------------------------------------

# Runs a command with each folder below a folder, the folder itself first, then the next level, until
# one of them returns 0 or so many have been looked at. Folders are given by their path below the
# top: "" and then "/Systems" and so on.
_ostrafel_walk() {
  local top=$1 command=$2 folder sub
  local -a folders=('')
  local -i i
  for ((i = 0; i < ${#folders[@]}; ++i)); do
    folder=${folders[i]}
    ! "$command" "$folder" || return 0
    ((${#folders[@]} < 256)) || continue
    for sub in "$top$folder"/*/; do
      sub=${sub%/}
      folders+=("${sub:${#top}}")
      ((${#folders[@]} < 256)) || break
    done
  done
}

# Sets the caller's id to the "@odata.id" of a file's root object, when it is found near the start
# and a string of plain characters. Members of other objects with the same name do not count. A file
# may be made to be slow to read, so the work is counted: the caller's left says how much may still
# be done.
_ostrafel_root_id() {
  local found
  found=$(
    { head -c 65536 -- "$1" && echo; } 2>/dev/null | LC_ALL=C awk -v "left=$left" '
      # Returns what a string stands for; nothing when it has other characters, or is too long.
      function unescaped(text,    result, c) {
        if (length(text) > 1024) return ""
        while (match(text, /\\./)) {
          c = substr(text, RSTART + 1, 1)
          if (c !~ /["\\\/]/) return ""
          result = result substr(text, 1, RSTART - 1) c
          text = substr(text, RSTART + 2)
        }
        result = result text
        return result ~ /[\001-\037\177]/ ? "" : result
      }
      # Whether the quote after a string is escaped: an odd number of backslashes stands before it.
      function ends_in_escape(text,    i) {
        text = substr(text, length(text) < 1024 ? 1 : length(text) - 1023)
        for (i = length(text); i > 0 && substr(text, i, 1) == "\\"; --i) --left
        return (length(text) - i) % 2
      }
      function count_brackets(piece,    i) {
        gsub(/[^][{}]+/, "", piece)
        left -= length(piece)
        for (i = 1; i <= length(piece); ++i) {
          if (index("{[", substr(piece, i, 1))) ++depth
          else if (!--depth) exit
        }
      }
      # A record is what stands between two quotes: a string, or what is between two strings. Long
      # ones are cut into pieces, as some awks look through all of a string to find a part of it.
      BEGIN { RS = "\"" }
      NR == 1 && !/^[^][{}:,]*[{]/ { exit }
      (left -= 2 + int(length($0) / 16)) <= 0 { exit }
      in_text {
        text = substr(text $0, 1, 1025)
        if (ends_in_escape($0)) text = text "\""
        else in_text = 0
        next
      }
      is_wanted { id = unescaped(text); exit }
      {
        is_wanted = depth == 1 && text == "@odata.id" && /^[^][{}:,]*:[^][{}:,]*$/
        for (i = 1; i <= length($0) && left > 0; i += 64) count_brackets(substr($0, i, 64))
        text = ""
        in_text = 1
      }
      END { print (left > 0 ? left : 0), id }'
  )
  left=${found%% *} id=${found#* }
}

# For _ostrafel_walk, with the caller's tree, name, files and left: sets uri and returns 0 when the
# folder's file tells which.
_ostrafel_find_uri() {
  local file=$tree$1/$name id
  [[ -f $file && -r $file ]] || return 1
  # A glance at some files, no search.
  ((++files <= 16 && left > 0)) || return 0
  _ostrafel_root_id "$file"
  [[ ! $1 ]] || id=${id%/}
  [[ $id == ?*"$1" ]] || return 1
  uri=${id%"$1"}
}

# For _ostrafel_walk: adds the names of the folder's .json files to the caller's names.
_ostrafel_find_names() {
  local file
  for file in "$tree$1"/*.[jJ][sS][oO][nN]; do
    [[ ! -f $file ]] || names[${file##*/}]=yes
    ((${#names[@]} < 100)) || return 0
  done
  return 1
}

# --- What is offered -----------------------------------------------------------------------------

# Where a path that was typed leads, in real_path: the shell has not looked at it yet.
_ostrafel_find_real_path() {
  real_path=$1
  [[ ${1:0:2} != \~/ ]] || real_path=$HOME/${1:2}
}

# Offers folders and the files whose path is like a pattern.
_ostrafel_offer_paths() {
  local pattern=$1 directory='' name path
  local -a paths=()
  [[ $current != */* ]] || directory=${current%/*}/
  name=${current##*/}
  _ostrafel_find_real_path "$directory"
  for path in "$real_path$name"*; do
    # shellcheck disable=SC2053  # a pattern
    [[ -d $path || ($path == $pattern && -f $path) ]] || continue
    path=$directory${path##*/}
    paths+=("$path")
  done
  if ((kept == 0)); then
    # readline quotes these, and puts a slash after a folder.
    COMPREPLY=("${paths[@]}")
    compopt -o filenames 2>/dev/null
    return
  fi
  for path in "${paths[@]}"; do
    _ostrafel_find_real_path "$path"
    [[ ! -d $real_path ]] || path+=/
    _ostrafel_offer "$path"
  done
  [[ ${#paths[@]} != 1 || $path != */ ]] || compopt -o nospace 2>/dev/null
}

_ostrafel_offer_uri() {
  local tree=$1 name=${2:-index.json} uri='' id files=0 left=32768
  if [[ -f $tree && -r $tree ]]; then
    _ostrafel_root_id "$tree"
    uri=$id
  elif [[ -d $tree ]]; then
    _ostrafel_walk "$tree" _ostrafel_find_uri
  fi
  _ostrafel_offer "${uri:-/redfish/v1}"
}

_ostrafel_offer_names() {
  local tree=$1 name
  local -A names=()
  [[ -d $tree ]] || return 0
  _ostrafel_walk "$tree" _ostrafel_find_names
  for name in "${!names[@]}"; do
    _ostrafel_offer "$name"
  done
}

# --- Programs with options -----------------------------------------------------------------------

_ostrafel_offer_words() {
  local word
  for word; do
    _ostrafel_offer "$word"
  done
}

# _ostrafel_takes_value FUNCTION OPTION: see below.
_ostrafel_takes_value() {
  local -a COMPREPLY=()
  local current=$'\n'  # begins nothing that is offered
  "$@"
}

# For a tree's arguments, with the arguments before it.
_ostrafel_offer_tree_argument() {
  local real_path=''
  ((${#arguments[@]} == 0)) || _ostrafel_find_real_path "${arguments[0]}"
  case ${#arguments[@]} in
    0) _ostrafel_offer_paths '*.[jJ][sS][oO][nN]' ;;
    1) _ostrafel_offer_uri "$real_path" ;;
    2) _ostrafel_offer_names "$real_path" ;;
  esac
}

# _ostrafel_offer_for_tool VALUES ARGUMENT OPTION...: for a line of options and arguments. VALUES is
# a function that offers values for an option that takes one, and returns 1 for any other; ARGUMENT
# one that offers what may stand behind the arguments that are there.
# shellcheck disable=SC2154  # _ostrafel_complete sets the words
_ostrafel_offer_for_tool() {
  local offer_values=$1 offer_argument=$2 word option='' ended='' start
  local -a arguments=()
  for word in "${words[@]:1:${#words[@]}-2}"; do
    if [[ $option ]]; then
      option=''
    elif [[ $ended || $word != -?* ]]; then
      arguments+=("$word")
    elif [[ $word == -- ]]; then
      ended=yes
    elif _ostrafel_takes_value "$offer_values" "$word"; then
      option=$word
    fi
  done
  if [[ ! $option && ! $ended && $current == --*=* ]]; then
    # readline replaces what is behind the sign.
    start=${current%%=*}=
    option=${start%=} current=${current#"$start"}
    kept=$((kept < ${#start} ? 0 : kept - ${#start}))
  fi
  if [[ $option ]]; then
    "$offer_values" "$option"
  elif [[ ! $ended && $current == -* ]]; then
    _ostrafel_offer_words "${@:3}"
  else
    "$offer_argument"
  fi
}

# --- The program ---------------------------------------------------------------------------------

# _ostrafel_complete PROGRAM FUNCTION: takes the line apart and calls the function, which finds
#   words     the program and its arguments, the last of which is to be completed
#   current   that word
#   quote, kept   see above
_ostrafel_complete() {
  local -  # the options of set, which the shell's user may have changed
  set +efu
  local -a words
  local quote kept redirects current shell_options
  COMPREPLY=()
  _ostrafel_split "${COMP_LINE:0:COMP_POINT}"
  # Assignments may come first.
  while ((${#words[@]} > 1)) && [[ ${words[0]##*/} != "${1##*/}" ]]; do
    words=("${words[@]:1}")
  done
  current=${words[-1]}
  if [[ $redirects ]]; then
    compopt -o default 2>/dev/null
    return
  fi
  shell_options=$(shopt -p dotglob failglob nocaseglob nocasematch nullglob)
  shopt -u dotglob failglob nocaseglob nocasematch
  shopt -s nullglob
  "$2"
  eval "$shell_options"
}
