// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/usage.h"

#include "tool/tool.h"

namespace ostrafel {

const char* const ToolName = "ostrafel-diff";

std::string DiffHelpText() {
  return R"(Usage: ostrafel-diff [options] <StaticDataPath> <URI> [FileName]

Compares what the store holds with what Ostrafel would make of it, and can make
it so. Writes nothing without --apply.

  StaticDataPath         a folder, or a file whose name ends in .json
  URI                    the key of the topmost file
  FileName               the file to load in each folder (index.json)

What is compared:
  --update               what an update of the tree would make of this store;
                         otherwise what a create would leave
  --against PATH         the store that a create of another tree would leave,
                         instead of a server's
  --ignore PATTERN       leave out keys or JSON pointers that match this pattern
                         of Redis; may be given again
  --no-extra             leave out what only the store has
  --www DIR              the folder of the files that "&&File" names
                         (/usr/local/nginx/www/)

What is changed:
  --apply                change the store, in one transaction
  --batch N              in transactions of N resources each

The server, otherwise found as Ostrafel finds it:
  --socket PATH          its Unix socket
  --tcp [HOST:]PORT      its port
  --password-file FILE   the file of its password, or OSTRAFEL_PASSWORD in the
                         environment has the password

What is shown:
  --format FORMAT        text or json (text)
  --stat                 numbers for each resource
  --color WHEN           auto, always or never (auto: on a terminal)
  -q, --quiet            nothing but trouble
  -h, --help             this text
  --version              the version

The status is 0 when both are equal or the store was changed, 1 when they
differ, and 2 when there was trouble.
)";
}

std::string DiffVersionText() { return "ostrafel-diff " OSTRAFEL_VERSION "\n"; }

}  // namespace ostrafel
