# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests of the packages share, beside the checks of tests/support/checks.bash and the machines
# of machine.bash, which lie in $work. To be sourced by bash scripts after their options are set.
# shellcheck shell=bash
#
# Ends a script as skipped where packages cannot be built: scripts/test installs what that takes for
# root only.
#
#   $root $version $architecture the sources; what packages of them are of
#   $work                        a directory of the script's own, deleted when it ends
#   build_packages               sets $packages to a directory with the packages: $OSTRAFEL_PACKAGES,
#                                when that is set; otherwise scripts/package makes them
#   package_file NAME            prints the path of a binary package
#   need_machines [RELEASE]      ends a script as skipped where there can be no machines, or not of that
#                                release; otherwise builds packages
#   apt_in_machine DIR ARGUMENT...
#                                runs apt-get in a machine, and shows the end of what it says when it
#                                fails
#   other_version VERSION FILE   makes, of the package, one of another version

root=$(readlink -f -- "${BASH_SOURCE[0]}")
root=${root%/*/*/*}
# shellcheck source-path=SCRIPTDIR source=../support/checks.bash
. "$root/tests/support/checks.bash"
# shellcheck source-path=SCRIPTDIR source=machine.bash
. "$root/tests/package/machine.bash"
if ((EUID != 0)) && ! dpkg-checkbuilddeps "$root/debian/control" 2>/dev/null; then
  skip_all 'what building packages takes is not installed (scripts/bootstrap --package does it)'
fi
version=$(dpkg-parsechangelog --file "$root/debian/changelog" --show-field Version)
architecture=$(dpkg --print-architecture)
work=$(mktemp -d)
chmod 755 "$work"  # others than root work in it, too

clean_up() {
  discard_machines
  rm -rf -- "${work:?}"
}
trap 'exit 1' HUP INT TERM

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

need_machines() {
  local obstacle
  ! obstacle=$(machine_obstacle "$@") || skip_all "$obstacle"
  build_packages
}

apt_in_machine() {
  in_machine --network "$1" apt-get -q -y -o Dpkg::Use-Pty=0 "${@:2}" >"$work/apt.log" 2>&1 || {
    tail -n 20 -- "$work/apt.log"
    return 1
  }
}

other_version() {
  local tree=$work/other-version
  rm -rf -- "$tree"
  dpkg-deb --raw-extract "$(package_file ostrafel)" "$tree"
  sed -i "s/^Version: .*/Version: $1/" "$tree/DEBIAN/control"
  dpkg-deb --root-owner-group --build "$tree" "$2" >/dev/null
}
