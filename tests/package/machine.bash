# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# Machines to try packages in: the smallest system of a Debian release, with systemd and a Redis
# server, in a directory. Commands run in it, and it boots, in a container. To be sourced by bash
# scripts (set -euo pipefail); they call discard_machines from their EXIT trap.
# shellcheck shell=bash
#
#   machine_obstacle [RELEASE]   prints why there can be no machines here, or fails when there can
#   make_machine DIR [RELEASE [PACKAGE...]]
#                                makes one in DIR, which must not exist: of this machine's own release
#                                or that with another code name, with redis-server or other packages
#   in_machine [--network] [--bind...] DIR COMMAND...
#                                runs a command in it, without booting it; services do not start.
#                                apt needs --network, which shares this machine's network; the other
#                                options are systemd-nspawn's
#   boot_machine DIR             boots it, and returns when it is up
#   in_booted_machine DIR COMMAND...
#                                runs a command in it while it runs
#   stop_machine DIR             shuts it down
#   discard_machines             ends and deletes every machine that was made
#
# Making the first one of a release takes longest. What it took is kept in $OSTRAFEL_MACHINE_CACHE
# (by default build/package/machine-cache) for a week, for any number of tests, also at the same time;
# so is each set of packages on top of it.

declare -A machine_container=()  # of a booted machine: the process id of its systemd-nspawn
declare -A machine_init=()       # and that of its init, as seen from here
machine_directories=()           # that were made
machine_cgroups=()               # for those that were booted
machine_start=()                 # what starts systemd-nspawn

readonly machine_include=systemd,systemd-sysv,dbus,procps
readonly machine_keyring=/usr/share/keyrings/debian-archive-keyring.gpg
readonly machine_cache_days=7

machine_failed() {
  printf '%s: %s\n' "${0##*/}" "$1" >&2
  return 1
}

# --- Whether it can be done ----------------------------------------------------------------------

# Deb archives as apt knows them, this architecture's only: "URI suite component", one a line. Those
# of another release are in the same places.
machine_archives() {
  # shellcheck disable=SC2016  # the dollars are for apt
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT) $(ARCHITECTURE) $(ORIGIN)' \
    'Created-By: Packages' |
    awk -v architecture="$(dpkg --print-architecture)" -v release="${1:-}" '
      $4 == architecture && $5 == "Debian" {
        if (own == "") own = $2
        if (release != "") sub("^" own, release, $2)
        print $1, $2, $3
      }'
}

# What the mirror says of a release, or its refusal to say it.
machine_release_obstacle() {
  local uri suite inrelease said reason=''
  read -r uri suite _ < <(machine_archives "$1")
  inrelease=$(mktemp -p "${work:-/tmp}")
  said=$(/usr/lib/apt/apt-helper download-file "${uri%/}/dists/$suite/InRelease" "$inrelease" 2>&1) ||
    reason="$uri has no Debian $suite"
  # Any other failure is one of this moment, and no reason to skip a test.
  [[ ! $reason || $said == *404* ]] || reason=''
  # Of several signatures one will do.
  if [[ -s $inrelease ]] && command -v gpgv >/dev/null &&
    ! grep -q '^\[GNUPG:\] GOODSIG ' \
      <<<"$(gpgv --status-fd 1 --keyring "$machine_keyring" "$inrelease" 2>/dev/null)"; then
    reason="$machine_keyring does not know who signs Debian $suite"
  fi
  rm -f -- "$inrelease"
  [[ $reason ]] && printf '%s\n' "$reason"
}

machine_obstacle() {
  local tool
  if ((EUID != 0)); then
    echo 'only root can make machines'
    return
  fi
  for tool in debootstrap systemd-nspawn nsenter setpriv flock apt-get; do
    if ! command -v "$tool" >/dev/null; then
      echo "$tool is not installed"
      return
    fi
  done
  if [[ ! $(machine_archives) ]]; then
    echo 'apt knows no Debian archive'
    return
  fi
  if ! unshare --mount --net --pid --fork mount -n -t tmpfs tmpfs /mnt &>/dev/null; then
    echo 'this machine refuses private namespaces'
    return
  fi
  [[ ${1:-} ]] && machine_release_obstacle "$1"
}

# --- Making one ----------------------------------------------------------------------------------

make_machine() {
  local directory=$1 release=${2:-} wanted=("${@:3}") base
  ((${#wanted[@]})) || wanted=(redis-server)
  machine_base "$release" "${wanted[@]}" || return
  machine_directories+=("$directory")
  machine_copy_of_base "$directory"
}

# The copy and a removal of the base that has become too old must not meet.
machine_copy_of_base() {
  flock --shared "$base.lock" cp -a --reflink=auto -- "$base" "$1"
}

# machine_base RELEASE [PACKAGE...]: sets $base to a directory with a machine as fresh from debootstrap
# and apt; makes it when there is none.
machine_base() {
  local release=$1 cache=${OSTRAFEL_MACHINE_CACHE:-} suite uri recipe made
  shift
  if [[ ! $cache ]]; then
    cache=$(readlink -f -- "${BASH_SOURCE[0]}")
    cache=${cache%/*/*/*}/build/package/machine-cache
  fi
  mkdir -p -- "$cache" || return
  (($# == 0)) || machine_base "$release" || return  # the $base on which this one is built
  read -r uri suite _ < <(machine_archives "$release") ||
    machine_failed 'apt knows no Debian archive' || return
  # Another recipe is another base: a cache may outlive this file's version.
  recipe=$(cksum < <(declare -f machine_debootstrap machine_install
    echo "$machine_include $*"
    machine_archives "$release"))
  made=$cache/$suite-$(dpkg --print-architecture)-${recipe%% *}
  # shellcheck disable=SC2094  # the lock's text, of which there is none, is not what counts
  (
    flock 9
    if [[ -d $made && $(find "$made.lock" -daystart -mtime "-$machine_cache_days") ]]; then
      exit
    fi
    rm -rf -- "$made" "$made.new"
    if (($#)); then
      machine_copy_of_base "$made.new" && machine_install "$made.new" "$@"
    else
      machine_debootstrap "$made.new" "$suite" "$uri"
    fi >"$made.log" 2>&1 || {
      tail -n 20 -- "$made.log" >&2
      rm -rf -- "$made.new"
      machine_failed "a machine could not be made; all that was said is in $made.log"
      exit
    }
    touch -- "$made.lock"
    mv -T -- "$made.new" "$made"
  ) 9>>"$made.lock" || return
  base=$made
}

machine_debootstrap() {
  local directory=$1 suite=$2 uri=$3
  nice -n 10 debootstrap --variant=minbase --include="$machine_include" --keyring="$machine_keyring" \
    "$suite" "$directory" "$uri" </dev/null || return
  # The updates of the release, too, or apt would not find what this machine's packages need.
  machine_archives "$suite" | sed 's/^/deb /' >"$directory/etc/apt/sources.list"
  # In Debian's words for "start no service": unless an init runs that could.
  printf '%s\n' '#!/bin/sh' '[ -d /run/systemd/system ] || exit 101' \
    >"$directory/usr/sbin/policy-rc.d"
  chmod 755 "$directory/usr/sbin/policy-rc.d"
  # A dated mirror may be older than its signatures are valid; what this machine accepts, it accepts.
  apt-config dump --format '%f "%v";%n' Acquire::Check-Valid-Until Acquire::Check-Date \
    >"$directory/etc/apt/apt.conf.d/90machine"
  # No machine outlives a loss of power.
  echo force-unsafe-io >"$directory/etc/dpkg/dpkg.cfg.d/machine"
  in_machine --network "$directory" sh -c 'apt-get clean && apt-get update -q' || return
  # Each machine gets an identity of its own when it boots.
  : >"$directory/etc/machine-id"
}

machine_install() {
  local directory=$1
  shift
  # shellcheck disable=SC2016  # for the shell inside
  in_machine --network "$directory" nice -n 10 sh -c \
    'apt-get install -q -y --no-install-recommends "$@" && apt-get clean' sh "$@"
}

# --- Commands without an init --------------------------------------------------------------------

in_machine() {
  local network=(--private-network) options=()
  while [[ $1 == --* ]]; do
    if [[ $1 == --network ]]; then network=(--resolv-conf=replace-host); else options+=("$1"); fi
    shift
  done
  local directory=$1
  shift
  machine_nspawn "$directory" --as-pid2 --pipe "${network[@]}" "${options[@]}" \
    --setenv=LC_ALL=C.UTF-8 --setenv=DEBIAN_FRONTEND=noninteractive -- "$@"
}

# Where systemd runs, a container gets a scope from it; elsewhere it stays where its caller is. What
# systemd-nspawn keeps in /run goes by the directory's last name, so each gets a place of its own.
machine_nspawn() {
  local directory=$1 unit=()
  shift
  [[ -d /run/systemd/system ]] || unit=(--keep-unit)
  mkdir -p /run/systemd/nspawn
  # shellcheck disable=SC2016  # expanded by the shell inside
  set -- unshare --mount sh -c 'mount -n -t tmpfs tmpfs /run/systemd/nspawn && exec "$@"' sh \
    systemd-nspawn --quiet --register=no "${unit[@]}" --directory="$directory" "$@"
  "${machine_start[@]}" "$@"
}

# --- Booting -------------------------------------------------------------------------------------

boot_machine() {
  local directory=$1 console=$1.console name=ostrafel-machine.$BASHPID.${#machine_cgroups[@]}
  [[ -d /run/systemd/system ]] || machine_make_cgroups "$name"
  # Should this shell be killed, the machine is shut down.
  (
    for cgroup in "${machine_cgroups[@]}"; do
      [[ $cgroup != *"/$name" ]] || echo "$BASHPID" >"$cgroup/cgroup.procs"
    done
    machine_start=(exec setpriv --pdeathsig TERM)
    machine_nspawn "$directory" --private-network --console=pipe --boot
  ) </dev/null >"$console" 2>&1 &
  machine_container[$directory]=$!
  machine_init[$directory]=''
  local deadline=$((SECONDS + 90)) state=''
  while ((SECONDS < deadline)) && kill -0 "${machine_container[$directory]}" 2>/dev/null; do
    machine_find_init "$directory"
    if [[ ${machine_init[$directory]} ]]; then
      state=$(in_booted_machine "$directory" systemctl is-system-running 2>/dev/null) || :
      # A service that failed may be what the test is about.
      [[ $state != running && $state != degraded ]] || return 0
    fi
    sleep 0.2
  done
  tail -n 30 -- "$console" >&2
  stop_machine "$directory"
  machine_failed "$directory did not boot${state:+ further than \"$state\"}; its console is above"
}

# A machine's init takes the cgroup that it is started in for the root of its own: without one for
# each, two machines would share the groups of their services.
machine_make_cgroups() {
  local line path mount
  while IFS= read -r line; do
    case $line in
      0::*) mount=$(awk '$9 == "cgroup2" || $(NF-2) == "cgroup2" { print $5; exit }' /proc/self/mountinfo) ;;
      *:name=systemd:*) mount=$(awk '/name=systemd/ { print $5; exit }' /proc/self/mountinfo) ;;
      *) continue ;;
    esac
    [[ $mount ]] || continue
    path=$mount${line#*:*:}
    path=${path%/}/$1
    if mkdir -- "$path" 2>/dev/null; then machine_cgroups+=("$path"); fi
  done </proc/self/cgroup
}

# The init is the child of systemd-nspawn that is process 1 for itself.
machine_find_init() {
  local container=${machine_container[$1]} child identities
  local children=''
  read -r children 2>/dev/null <"/proc/$container/task/$container/children" || :
  for child in $children; do
    identities=$(sed -n 's/^NSpid://p' "/proc/$child/status" 2>/dev/null) || continue
    if [[ ${identities##*[[:space:]]} == 1 ]]; then machine_init[$1]=$child; fi
  done
}

in_booted_machine() {
  local init=${machine_init[$1]}
  shift
  nsenter --target "$init" --mount --uts --ipc --net --pid --cgroup --root --wd -- \
    env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb \
    LC_ALL=C.UTF-8 "$@"
}

# --- Ending --------------------------------------------------------------------------------------

stop_machine() {
  local directory=$1 container=${machine_container[$1]:-} deadline=$((SECONDS + 30)) cgroup
  [[ $container ]] || return 0
  kill -TERM "$container" 2>/dev/null || :  # to which it answers with an orderly shutdown
  while kill -0 "$container" 2>/dev/null; do
    if ((SECONDS >= deadline)); then
      kill -KILL "${machine_init[$directory]:-$container}" "$container" 2>/dev/null || :
    fi
    sleep 0.05
  done
  wait "$container" 2>/dev/null || :
  unset "machine_container[$directory]" "machine_init[$directory]"
  for cgroup in "${machine_cgroups[@]}"; do
    find "$cgroup" -depth -type d -exec rmdir {} + 2>/dev/null || :  # refuses groups in use
  done
}

discard_machines() {
  local directory
  for directory in "${!machine_container[@]}"; do stop_machine "$directory"; done
  for directory in "${machine_directories[@]}"; do
    rm -rf --one-file-system -- "$directory" "$directory.console"
  done
  machine_directories=()
}
