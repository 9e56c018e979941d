// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "system/file_capabilities.h"

#include <grp.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// root may open everything; a program without these capabilities may not. Containers may start with
// inheritable ones, which root's programs have whatever the bounding set is.
void GiveUpFileCapabilities() {
  (void)prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
  (void)prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
  __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct capabilities[_LINUX_CAPABILITY_U32S_3] = {};
  (void)syscall(SYS_capget, &header, capabilities);
  for (__user_cap_data_struct& part : capabilities) part.inheritable = 0;
  (void)syscall(SYS_capset, &header, capabilities);
  // Where the sandbox uses the real paths, only this group may look into Debian's.
  struct stat directory = {};
  if (stat("/etc/redis", &directory) == 0) (void)setgroups(1, &directory.st_gid);
}
