# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests of ostrafel-publish-redis share: checks, a sandbox in which /etc/redis and
# /run/redis are private, a real redis-server in it, and the shells and tools that run the program.
# To be sourced by bash scripts, with their arguments; they then run inside.
# shellcheck shell=bash
# shellcheck disable=SC2034,SC2120  # used, and called with arguments, by those who source this

export LC_ALL=C  # bytes are bytes

test_script=$(readlink -f -- "$0")
repository=${test_script%/*/*/*}
readonly test_script repository
readonly config=/etc/redis/redis.conf runtime=/run/redis socket=/run/redis/redis-server.sock

if [[ ! ${OSTRAFEL_INSTALLED:-} ]]; then
  printf '%s: OSTRAFEL_INSTALLED must name the folder of an installation\n' "${0##*/}" >&2
  exit 1
fi
readonly installed_program=$OSTRAFEL_INSTALLED/sbin/ostrafel-publish-redis
[[ -x $installed_program ]] || {
  printf '%s: there is no %s\n' "${0##*/}" "$installed_program" >&2
  exit 1
}

# --- The sandbox ---------------------------------------------------------------------------------

# Not everyone may read Debian's own file, and inside nobody sees it.
enter_sandbox() {
  local directory status=0
  directory=$(mktemp -d)
  cp -- "$config" "$directory/stock.conf" 2>/dev/null || :
  OSTRAFEL_TEST_DIRECTORY=$directory \
    "$repository/scripts/sandbox" --www "$repository/examples/www" -- "$BASH" "$test_script" --inside ||
    status=$?
  rm -rf -- "$directory"
  exit "$status"
}
[[ ${1:-} == --inside ]] || enter_sandbox

# shellcheck source-path=SCRIPTDIR source=../support/checks.bash
. "$repository/tests/support/checks.bash"

[[ ${OSTRAFEL_SANDBOX:-} == private ]] || skip_all 'this machine refuses private namespaces'
readonly work=$OSTRAFEL_TEST_DIRECTORY
redis-cli -s "$OSTRAFEL_SANDBOX_SOCKET" shutdown nosave  # the tests start their own
rm -f -- "$runtime"/redis.*                              # and publish where they are
[[ ! -d /var/lib/redis ]] || mount -n -t tmpfs tmpfs /var/lib/redis  # which stock.conf names

# --- The server ----------------------------------------------------------------------------------

server=''
clean_up() { stop_server; }

start_server() {  # in the root directory, as services are
  : >"$work/server.log"  # before anyone looks for what is in it
  (cd / && exec setpriv --pdeathsig KILL redis-server "$config" --daemonize no --logfile '') \
    >"$work/server.log" 2>&1 &
  server=$!
  local deadline=$((SECONDS + 20))
  until [[ $(<"$work/server.log") == *'eady to accept connections'* ]]; do
    if ! kill -0 "$server" 2>/dev/null || ((SECONDS > deadline)); then
      stop_server
      return 1
    fi
    sleep 0.01
  done
}

starts_not() { ! start_server; }

stop_server() {
  [[ $server ]] || return 0
  kill -KILL "$server" 2>/dev/null || :
  wait "$server" 2>/dev/null || :
  server=''
}

# A user who needs no password asks, at the socket where the kernel says that the server listens.
readonly probe='user probe on nopass ~* &* +@all'
server_says() {
  local path
  path=$(sed -nE 's/^([^ ]+ ){3}00010000 ([^ ]+ +){3}(.*)/\3/p' /proc/net/unix)
  redis-cli -s "$path" --user probe --pass x --no-auth-warning config get "$1" 2>&1 | sed 1d
}

# --- The program ---------------------------------------------------------------------------------

# Inside everyone is root, and so the server is: what a build with -DOSTRAFEL_REDIS_USER=root installs.
program=$work/ostrafel-publish-redis
sed "s/^readonly redis_user='.*'$/readonly redis_user='root'/" "$installed_program" >"$program"
chmod 755 "$program"

# Worlds that the program may meet: the machine's own shell and tools, other shells and kinds of
# awk, and the one program that is all of them in a small image.
declare -A launcher=([sh]=/bin/sh [bash]="$BASH --posix")
readonly tools='awk cat chmod dirname grep id mktemp mv rm rmdir sort stat tr wc'
if command -v busybox >/dev/null; then
  mkdir "$work/busybox"
  for tool in $tools; do ln -s "$(command -v busybox)" "$work/busybox/$tool"; done
  launcher[busybox]="env PATH=$work/busybox $(command -v busybox) sh"
fi
for tool in mawk gawk original-awk; do
  command -v "$tool" >/dev/null || continue
  [[ ! $(type -P "$tool") -ef $(type -P awk) ]] || continue  # the machine's own
  mkdir "$work/$tool"
  ln -s "$(command -v "$tool")" "$work/$tool/awk"
  launcher[$tool]="env PATH=$work/$tool:$PATH /bin/sh"
done

# Runs the program; its standard output, standard error and status are then in these three.
out='' err='' status=0 world='sh'
publish() {
  status=0
  # shellcheck disable=SC2086  # several words
  ${launcher[$world]} "$program" "$@" >"$work/out" 2>"$work/err" || status=$?
  out=$(<"$work/out")
  err=$(<"$work/err")
}

says() {
  [[ $err == 'ostrafel-publish-redis: '*"$1"* ]] || {
    printf '#   says: %q\n' "$err"
    return 1
  }
}

# Writes redis.conf: the text, and what lets us ask the server.
configure() { printf '%s\n%s\n' "$probe" "$1" >"$config"; }

# All that is in the runtime directory.
state() { find "$runtime" -mindepth 1 -printf '%P %i %m %s\n' | sort; }

# refused DESCRIPTION WORDS: nothing is written, and WORDS are said.
refused() {
  local before
  before=$(state)
  for world in "${!launcher[@]}"; do
    # shellcheck disable=SC2119
    publish
    check "$1: status 1 ($world)" equal "$status $out" '1 '
    check "$1: a clear error ($world)" says "$2"
    check "$1: nothing is touched ($world)" equal "$(state)" "$before"
  done
  world='sh'
}
