# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# Usage: LC_ALL=C awk [-v usage=1] -f cpp_messages.awk SOURCE...
#
# Prints every message that C++ sources can print, one a line, with %s where something is filled in.
# A message that does not end its line is followed by " (without a line end)". With usage=1, prints
# the usage text instead, of which otherwise only the first line counts.
#
# A message is the text that is given to fputs, fprintf, puts or perror, or to a function that has a
# parameter "const char* message". When a text is printed that is neither a literal, nor a constant,
# nor such a parameter, or anything is printed in another way, there may be a message that nobody
# would find: the script then fails and says where.

BEGIN {
  split("printf vprintf vfprintf dprintf vdprintf putc fputc putchar fwrite write writev send " \
        "psignal warn warnx vwarn vwarnx err errx error syslog format_to print println", list)
  for (i in list) is_unknown_printer[list[i]] = 1
  is_stream["cerr"] = is_stream["cout"] = is_stream["clog"] = 1
  place_of["fputs"] = place_of["puts"] = place_of["perror"] = 1  # of the text among the arguments
  place_of["fprintf"] = 2
}

FNR == 1 && NR > 1 { scan() }
FNR == 1 { source = FILENAME; code = "" }
{ code = code $0 "\n" }

END {
  scan()
  for (call = 1; call <= calls; ++call) check()
  if (!messages) fail("no message at all")
  exit failed
}

function fail(text) {
  printf "%s\n", text >"/dev/stderr"
  failed = 2
}

# --- A source's calls, their arguments, its constants ---------------------------------------------

# In an argument, \001 N \001 stands for the literal number N.
function scan() {
  depth = 0
  token = ""
  while (code != "") {
    if (taken("^[ \t\n]+") || taken("^//[^\n]*") || taken("^/[*]([^*]|[*]+[^*/])*[*]+/")) continue
    before = token
    if (taken("^#[^\n]*")) {
      if (token ~ /"/ && token !~ /^# *include /) fail(source ": a text in " token)
    } else if (substr(code, 1, 3) == "R\"(") {
      literal(substr(code, 4, index(code, ")\"") - 4))
      code = substr(code, index(code, ")\"") + 2)
      token = "\""
    } else if (taken("^\"([^\"\\\\]|\\\\.)*\"")) {
      literal(unescaped(substr(token, 2, length(token) - 2)))
      token = "\""
    } else if (taken("^'([^'\\\\]|\\\\.)[^']*'")) {
      add("0")
    } else if (taken("^[A-Za-z_0-9]+('[0-9]+)*")) {
      add((before ~ /[A-Za-z_0-9]$/ ? " " : "") token)
      if (token in is_stream) fail(source ": std::" token " is no known way to print a message")
    } else {
      token = substr(code, 1, 1)
      code = substr(code, 2)
      punctuation()
    }
  }
}

# Takes what the pattern matches from the start of the code.
function taken(pattern) {
  if (!match(code, pattern)) return 0
  if (pattern !~ /^\^(\[ |\/)/) token = substr(code, 1, RLENGTH)  # blanks and comments are nothing
  code = substr(code, RLENGTH + 1)
  return 1
}

function unescaped(text,    result) {
  result = ""
  while (match(text, /\\./)) {
    c = substr(text, RSTART + 1, 1)
    result = result substr(text, 1, RSTART - 1) (c == "n" ? "\n" : c == "t" ? "\t" : c)
    text = substr(text, RSTART + 2)
  }
  return result text
}

function literal(text) {
  if (before == "\"") {  # continues the one before
    literals[literal_count] = literals[literal_count] text
    if (constant_name != "") constants[source, constant_name] = literals[literal_count]
    return
  }
  literals[++literal_count] = text
  constant_name = before == "=" ? name_before_sign : ""
  if (constant_name != "") constants[source, constant_name] = text
  add("\001" literal_count "\001")
}

function punctuation() {
  if (token == "=") name_before_sign = before
  if (token == "(") {
    called[++depth] = before ~ /^[A-Za-z_]/ ? before : ""
    count[depth] = 1
    arguments[depth, 1] = ""
  } else if (token == ")" && depth > 0) {
    note_call()
    --depth
    add("()")
  } else if (token == "," && depth > 0) {
    arguments[depth, ++count[depth]] = ""
  } else {
    add(token)
  }
}

function add(text) {
  if (depth > 0) arguments[depth, count[depth]] = arguments[depth, count[depth]] text
}

function note_call(    i) {
  ++calls
  call_source[calls] = source
  call_name[calls] = called[depth]
  for (i = 1; i <= count[depth]; ++i) {
    call_argument[calls, i] = arguments[depth, i]
    if (arguments[depth, i] != "const char*message") continue
    place_of[called[depth]] = i  # a function's head
    has_message_parameter[source] = 1
  }
}

# --- What is printed ------------------------------------------------------------------------------

function check(    name, text, choices, n, i) {
  name = call_name[call]
  if (name in is_unknown_printer) {
    fail(call_source[call] ": " name " is no known way to print a message")
  }
  if (!(name in place_of)) return
  text = call_argument[call, place_of[name]]
  if (text == "const char*message") return
  if (text == "message" && call_source[call] in has_message_parameter) return
  sub(/^[^?\001]*\?/, "", text)  # either of two
  n = split(text, choices, ":")
  for (i = 1; i <= n; ++i) {
    if (choices[i] ~ /^\001[0-9]+\001$/) {
      emit(name, literals[substr(choices[i], 2, length(choices[i]) - 2)])
    } else if ((call_source[call], choices[i]) in constants) {
      emit(name, constants[call_source[call], choices[i]])
    } else {
      gsub(/\001[0-9]*\001/, "\"...\"", choices[i])
      fail(call_source[call] ": " name " prints " choices[i] ", which may be any text")
    }
  }
}

function emit(name, text,    lines, n, i) {
  if (text == "") return
  ++messages
  if (text ~ /^Usage:\n/) {
    if (usage) printf "%s", text
    text = "Usage:\n"
  }
  if (usage) return
  if (name == "fprintf" && call_argument[call, 3] == "message") sub(/^%s/, "", text)
  if (name == "perror") text = text ": %s\n"
  if (name == "puts") text = text "\n"
  if (name != "fputs") gsub(/%[-+ #0]*[0-9.]*[hljztL]*[diouxXfFeEgGcsp]/, "%s", text)
  n = split(text, lines, "\n")
  for (i = 1; i <= n; ++i) {
    if (lines[i] != "") print lines[i] (i == n ? " (without a line end)" : "")
  }
}
