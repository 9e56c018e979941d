# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

SUMMARY = "Loads static Redfish resources into the local Redis"
DESCRIPTION = "Loads Redfish resources, kept as trees of JSON files, into the Redis server of the \
machine, from which a Redfish web service answers requests: when the machine boots, or after an \
update of the resources."
SECTION = "net"
LICENSE = "Apache-2.0"
LIC_FILES_CHKSUM = "file://LICENSE;md5=3b83ef96387f14655fc854ddc3c6bd57"

DEPENDS = "hiredis jansson"

# The repository that this layer lies in. For another one: its place, protocol and branch, as in
# "git.example.com/mirror/ostrafel.git;protocol=https;branch=main".
OSTRAFEL_GIT ?= "${@os.path.realpath(d.getVar('OSTRAFEL_LAYERDIR') + '/../..')};protocol=file;nobranch=1"
# SRCREV says what is built, wherever that comes from: the place stays out of the tasks' signatures.
OSTRAFEL_GIT[vardepvalue] = ""
SRC_URI = "git://${OSTRAFEL_GIT};destsuffix=${BP}"
SRCREV = "31c1ad8d26611992d628b6ee6fa8c6591366fb6f"

# Where UNPACKDIR has no value, as in the first release of scarthgap, WORKDIR is unpacked into.
UNPACKDIR ??= "${WORKDIR}"
S = "${UNPACKDIR}/${BP}"

inherit cmake pkgconfig systemd manpages bash-completion

EXTRA_OECMAKE = "\
    -DOSTRAFEL_TESTS=OFF \
    -DOSTRAFEL_UNIT_DIR=${systemd_system_unitdir} \
    -DOSTRAFEL_REDIS_UNIT=redis.service \
    -DOSTRAFEL_REDIS_USER=redis \
"
PACKAGECONFIG[manpages] = "-DOSTRAFEL_MANUAL=ON,-DOSTRAFEL_MANUAL=OFF,scdoc-native"
# For an image on which trees are written, or whose units verify what they load. The loader needs
# nothing of it.
PACKAGECONFIG[tools] = "-DOSTRAFEL_TOOLS=ON,-DOSTRAFEL_TOOLS=OFF,nlohmann-json"

# SYSTEMD_SERVICE names none of the units. Redis's start pulls the publisher and the target in, by
# links in the package; what SYSTEMD_SERVICE names is started again by an upgrade, which would load
# the trees over what has changed since; and a template that it names is disabled, with its instances.
FILES:${PN} += "${systemd_system_unitdir} ${libexecdir}/ostrafel"

PACKAGES =+ "${PN}-tools ${PN}-zsh-completion"
FILES:${PN}-tools = "\
    ${bindir}/ostrafel-check ${bindir}/ostrafel-diff ${bindir}/ostrafel-export ${datadir}/ostrafel \
"
FILES:${PN}-zsh-completion = "${datadir}/zsh"

# By name: without it, hiredis may bring another server. Of util-linux only what locks: BusyBox may be
# without it.
RDEPENDS:${PN} += "redis util-linux-flock"
