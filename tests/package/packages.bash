# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests of the packages share. To be sourced by bash scripts after their options are set.
# shellcheck shell=bash
#
#   $root $version $architecture the sources; what packages of them are of
#   $work                        a directory of the script's own, deleted when it ends
#   check DESCRIPTION COMMAND... prints whether the command says yes
#   equal IS SHOULD_BE           says yes, or shows the difference
#   ends_well                    for the end of the script: its status says whether all went well
#   skip_all REASON              ends the script
#   build_packages               sets $packages to a directory with the packages: $OSTRAFEL_PACKAGES,
#                                when that is set; otherwise scripts/package makes them
#   package_file NAME            prints the path of a binary package
#   other_version VERSION FILE   makes, of the package, one of another version
#
# A script that has more to clean up than $work defines a function clean_up.

root=$(readlink -f -- "${BASH_SOURCE[0]}")
root=${root%/*/*/*}
version=$(dpkg-parsechangelog --file "$root/debian/changelog" --show-field Version)
architecture=$(dpkg --print-architecture)
work=$(mktemp -d)
chmod 755 "$work"  # others than root work in it, too

failures=0
completed=''

end_of_test() {
  if declare -F clean_up >/dev/null; then clean_up; fi
  rm -rf -- "${work:?}"
  [[ ! $completed ]] || return 0
  printf 'not ok - %s failed, or the tests broke off\n' "$failures"
  exit 1  # said here because bash ends with status 0 after some errors
}
trap end_of_test EXIT
trap 'exit 1' HUP INT TERM

ends_well() {
  ((failures == 0)) || return 1
  completed=yes
}

check() {
  local description=$1
  shift
  if "$@"; then
    printf 'ok - %s\n' "$description"
  else
    printf 'not ok - %s\n' "$description"
    failures=$((failures + 1))
  fi
}

equal() {
  [[ $1 == "$2" ]] || {
    diff --label is --label 'should be' -U 1 <(printf '%s\n' "$1") <(printf '%s\n' "$2") |
      sed 's/^/#   /'
    return 1
  }
}

skip_all() {
  printf 'ok - everything # SKIP %s\n' "$1"
  completed=yes
  exit
}

build_packages() {
  packages=${OSTRAFEL_PACKAGES:-$work/packages}
  if [[ ! ${OSTRAFEL_PACKAGES:-} ]]; then
    nice -n 10 "$root/scripts/package" "$packages" >"$work/build.log" 2>&1 || {
      tail -n 30 -- "$work/build.log"
      return 1
    }
  fi
}

package_file() {
  printf '%s/%s_%s_%s.deb' "$packages" "$1" "$version" "$architecture"
}

other_version() {
  local tree=$work/other-version
  rm -rf -- "$tree"
  dpkg-deb --raw-extract "$(package_file ostrafel)" "$tree"
  sed -i "s/^Version: .*/Version: $1/" "$tree/DEBIAN/control"
  dpkg-deb --root-owner-group --build "$tree" "$2" >/dev/null
}
