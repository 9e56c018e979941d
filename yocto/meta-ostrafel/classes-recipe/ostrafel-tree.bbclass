# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

# For a recipe that puts a tree of Redfish resources into an image, to be loaded at every start of
# Redis. The tree is checked as Ostrafel would read it, so that a mistake ends the build and not the
# boot. None of these values can hold a single quote.

# The name, by which the tree is ostrafel@NAME.service; letters, digits and : _ . - make it up.
OSTRAFEL_TREE_NAME ?= "${BPN}"
# The folder that holds the tree.
OSTRAFEL_TREE_DIR ?= "${S}/${OSTRAFEL_TREE_NAME}"
# Under which URI it is loaded; each tree needs one of its own, as "create" empties it first.
OSTRAFEL_TREE_URI ?= "/redfish/v1"
# create, or update.
OSTRAFEL_TREE_ACTION ?= "create"
# Which file is loaded in each folder.
OSTRAFEL_TREE_FILE ?= "index.json"
# The name of the tree that this one changes: it is loaded after that one, and again whenever that is.
OSTRAFEL_TREE_CHANGES ?= ""

# JSON waits for no compiler. A recipe that needs one sets this to "".
INHIBIT_DEFAULT_DEPS ?= "1"

# A recipe with sources of another kind sets S after it has inherited this.
UNPACKDIR ??= "${WORKDIR}"
S = "${UNPACKDIR}"

do_install[file-checksums] += "${OSTRAFEL_LAYERDIR}/scripts/ostrafel-tree:True"
do_install[vardepsexclude] += "OSTRAFEL_LAYERDIR"

do_install:append() {
    name='${OSTRAFEL_TREE_NAME}'
    source='${OSTRAFEL_TREE_DIR}'
    action='${OSTRAFEL_TREE_ACTION}'
    uri='${OSTRAFEL_TREE_URI}'
    file='${OSTRAFEL_TREE_FILE}'
    changes='${OSTRAFEL_TREE_CHANGES}'
    tool=${OSTRAFEL_LAYERDIR}/scripts/ostrafel-tree

    # Links may lead to where the machine has nothing, so that what they lead to is copied.
    tree="${D}${datadir}/ostrafel/$name"
    install -d "$tree"
    said=$(cp -RL "$source"/. "$tree"/ 2>&1) || bbfatal "$said"
    chmod -R u=rwX,go=rX "$tree"
    said=$(python3 $tool check "$name" "$tree" "$action" "$uri" "$file" "$changes" 2>&1) ||
        bbfatal "$source: $said"
    [ -z "$said" ] || bbwarn "$source: $said"

    # What "systemctl enable" does.
    units=${D}${systemd_system_unitdir}
    unit=ostrafel@$name.service
    install -d $units/ostrafel.target.requires
    ln -sf ../ostrafel@.service $units/ostrafel.target.requires/$unit

    settings=$(python3 $tool drop-in "$action" "$uri" "$file" "$changes")
    if [ -n "$settings" ]; then
        install -d $units/$unit.d
        printf '%s\n' "$settings" >$units/$unit.d/tree.conf
    fi
}

FILES:${PN} += "${datadir}/ostrafel/${OSTRAFEL_TREE_NAME} ${systemd_system_unitdir}"
RDEPENDS:${PN} += "ostrafel"
