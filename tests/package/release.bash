# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests on another Debian release share. To be sourced by bash scripts, after packages.bash
# and machine.bash, with the release's code name as first argument.
# shellcheck shell=bash
#
#   $debian                     the code name
#   $release_folder             what is built there, kept for the tests that run it: the programs in
#                               build, packages in packages. $OSTRAFEL_RELEASE_FOLDER, when that is set
#   make_plain_machine DIR      makes a machine with what the README names for a build, and no more
#   make_full_machine DIR       makes one in which tests and packages can be built and run
#   in_sources DIR BUILD COMMAND...
#                               runs a command in a machine, in the sources, which it cannot change;
#                               the folder "build" in them is $release_folder/BUILD

declare root  # which is set by packages.bash
readonly debian=${1:?the code name of a Debian release is missing}
release_folder=$(realpath -m -- "${OSTRAFEL_RELEASE_FOLDER:-$root/build/$debian}")
readonly release_folder

readonly plain_packages=(g++ cmake make pkgconf libhiredis-dev libjansson-dev)
readonly full_packages=(
  "${plain_packages[@]}" nlohmann-json3-dev ninja-build libgtest-dev locales
  redis-server redis-tools valkey-server util-linux mount iproute2
  build-essential debhelper scdoc lintian
)

make_plain_machine() { make_machine "$1" "$debian" "${plain_packages[@]}"; }

make_full_machine() { make_machine "$1" "$debian" "${full_packages[@]}"; }

in_sources() {
  local directory=$1 build=$release_folder/$2
  shift 2
  mkdir -p -- "$build" "$root/build"  # there must be something to lay it over
  in_machine --bind-ro="$root:/ostrafel" --bind="$build:/ostrafel/build" --chdir=/ostrafel \
    "$directory" nice -n 10 "$@"
}
