# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# What the completions for Ostrafel and its tools share.

# Sets REPLY to the path that a word of the line leads to. Only a variable or a tilde at its start is
# expanded: anything more could run something.
_Ostrafel_real_path() {
  local -a match mbegin mend
  if [[ $1 == (#b)(\"|)\$(\{|)([A-Za-z_][A-Za-z_0-9]#)(\}|)(*) ]]; then
    REPLY=${(P)match[3]}${(Q)${:-$match[1]$match[5]}}
  elif [[ $1 == '~/'* ]]; then
    REPLY=$HOME/${(Q)1[3,-1]}
  else
    REPLY=${(Q)1}
  fi
}

# Runs a command with each folder below a folder, the folder itself first, then the next level, until
# one of them returns 0 or so many have been looked at. Folders are given by their path below the
# top: "" and then "/Systems" and so on.
_Ostrafel_walk() {
  local top=$1 command=$2 sub
  local -a folders=('')
  local -i i
  for ((i = 1; i <= $#folders; ++i)); do
    ! $command "$folders[i]" || return 0
    (($#folders < 256)) || continue
    for sub in $top$folders[i]/*(N-/); do
      (($#folders < 256)) || break
      folders+=("${sub[$#top + 1,-1]}")
    done
  done
}

# Sets the caller's id to the "@odata.id" of a file's root object, when it is found near the start
# and a string of plain characters. Members of other objects with the same name do not count. A file
# may be made to be slow to read, so the work is counted: the caller's left says how much may still
# be done.
_Ostrafel_root_id() {
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

# For _Ostrafel_walk, with the caller's tree, name, files and left: sets uri and returns 0 when the
# folder's file tells which.
_Ostrafel_find_uri() {
  local file=$tree$1/$name id
  [[ -f $file && -r $file ]] || return 1
  # A glance at some files, no search.
  ((++files <= 16 && left > 0)) || return 0
  _Ostrafel_root_id $file
  [[ -z $1 ]] || id=${id%/}
  [[ $id == ?*"$1" ]] || return 1
  uri=${id[1,-1 - $#1]}
}

# For _Ostrafel_walk: adds the names of the folder's .json files to the caller's names.
_Ostrafel_find_names() {
  names+=($tree$1/*.(#i)json(N-.:t))
  (($#names >= 100))
}

_Ostrafel_offer_paths() {
  local -a expl
  _wanted files expl 'folder or .json file' _path_files -/ -g '*.(#i)json(-.)'
}

# _Ostrafel_offer_uri TREE NAME
_Ostrafel_offer_uri() {
  local tree=$1 name=$2 uri id
  local -i files=0 left=32768
  local -a expl
  if [[ -f $tree && -r $tree ]]; then
    _Ostrafel_root_id $tree
    uri=$id
  elif [[ -d $tree ]]; then
    _Ostrafel_walk $tree _Ostrafel_find_uri
  fi
  _wanted uris expl URI compadd - "${uri:-/redfish/v1}"
}

_Ostrafel_offer_names() {
  local tree=$1
  local -aU names
  local -a expl
  [[ -d $tree ]] || return 1
  _Ostrafel_walk $tree _Ostrafel_find_names
  _wanted files expl 'file name' compadd -a names
}
