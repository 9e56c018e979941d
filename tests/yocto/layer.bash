# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
#
# What the tests of the Yocto layer share, beside the checks of tests/support/checks.bash. To be
# sourced by bash scripts after their options are set.
# shellcheck shell=bash
# shellcheck disable=SC2034  # used by those who source this
#
#   $root $work                      the sources; a directory of the script's own, deleted at its end
#   $layer $recipe $redis $class     the layer, its recipe, the folder of its append to Redis, its class
#   $image                           what BitBake calls D: below $work, or wherever the script says
#   of FILE KIND NAME [NAME=VALUE]   asks recipe.py, with what BitBake's own configuration says
#   task_of FILE FUNCTION [NAME=VALUE]
#                                    prints a function in shell, with what tasks have beside it
#   $options $with_manual $without_manual $manual_needs $with_tools $without_tools $tools_need
#                                    what the recipe configures with
#   install_image MANUAL [TOOLS]     installs into $image what the recipe would, by default without
#                                    the tools

root=$(readlink -f -- "${BASH_SOURCE[0]}")
root=${root%/*/*/*}
# shellcheck source-path=SCRIPTDIR source=../support/checks.bash
. "$root/tests/support/checks.bash"

[[ ${OSTRAFEL_INSTALLED:-} ]] || {
  printf '%s: OSTRAFEL_INSTALLED must name the folder of an installation\n' "${0##*/}" >&2
  exit 1
}
command -v python3 >/dev/null || skip_all 'python3 is not installed'

work=$(mktemp -d)
# The machines of machine.bash, when the script uses it, lie in $work.
clean_up() {
  if declare -F discard_machines >/dev/null; then discard_machines; fi
  rm -rf -- "${work:?}"
}
trap 'exit 1' HUP INT TERM

readonly layer=$root/yocto/meta-ostrafel
recipe=$(printf '%s\n' "$layer"/recipes-support/ostrafel/ostrafel_*.bb)
readonly redis=$layer/recipes-extended/redis class=$layer/classes-recipe/ostrafel-tree.bbclass
image=$work/image

of() {
  "$root/tests/yocto/recipe.py" "$1" PN=ostrafel BPN=ostrafel BP=ostrafel-1 \
    WORKDIR="$work" D="$image" OSTRAFEL_LAYERDIR="$layer" bindir=/usr/bin sbindir=/usr/sbin libexecdir=/usr/libexec \
    sysconfdir=/etc datadir=/usr/share systemd_system_unitdir=/usr/lib/systemd/system "${@:4}" -- "$2" "$3"
}

task_of() {
  printf '%s\n' 'set -e' 'umask 022' \
    'bbfatal() { printf "fatal: %s\n" "$*"; exit 1; }' 'bbwarn() { printf "warning: %s\n" "$*"; }'
  of "$1" function "$2" "${@:3}"
}

IFS=, read -r with_manual without_manual manual_needs \
  <<<"$(of "$recipe" variable 'PACKAGECONFIG[manpages]')"
IFS=, read -r with_tools without_tools tools_need <<<"$(of "$recipe" variable 'PACKAGECONFIG[tools]')"
read -ra options <<<"$(of "$recipe" variable EXTRA_OECMAKE)"

# The programs are those of the installation that there is.
install_image() {
  local tools=${2:-$without_tools}
  rm -rf -- "$work/build"
  {
    cmake -S "$root" -B "$work/build" -DCMAKE_INSTALL_PREFIX=/usr "${options[@]}" "$1" "$tools" &&
      { [[ $1 != "$with_manual" ]] || cmake --build "$work/build" --target manual; } &&
      cp -- "$OSTRAFEL_INSTALLED/bin/Ostrafel" "$work/build/" &&
      { [[ $tools != "$with_tools" ]] || cp -- "$OSTRAFEL_INSTALLED"/bin/ostrafel-{check,diff,export} "$work/build/"; } &&
      DESTDIR=$image cmake --install "$work/build"
  } >"$work/install.log" 2>&1 || sed 's/^/#   /' "$work/install.log"
}
