// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/usage.h"

#include "tool/tool.h"

namespace ostrafel {

const char* const ToolName = "ostrafel-export";

std::string ExportHelpText() {
  return R"(Usage: ostrafel-export [options] <URI> <Directory>
       ostrafel-export --print [options] <URI>

Writes what the store holds at and below a URI as a tree of JSON files, from
which Ostrafel makes the same store. Writes nothing to the store.

  URI                    the key of the topmost resource
  Directory              the folder to write to, which must be empty or not
                         there

What is written:
  --force                into a folder that is not empty, over the files there
  --windows-names        names of folders that Windows takes, too: what it
                         forbids is replaced by "%" and two hexadecimal digits
  --www DIR              the folder of the files that "&&File" names
                         (/usr/local/nginx/www/)
  --print                one resource on standard output, and no files

The server, otherwise found as Ostrafel finds it:
  --socket PATH          its Unix socket
  --tcp [HOST:]PORT      its port
  --password-file FILE   the file of its password, or OSTRAFEL_PASSWORD in the
                         environment has the password

What is shown:
  -q, --quiet            nothing but trouble and what does not come back
  -h, --help             this text
  --version              the version

The status is 0 when a create of the tree gives the same store, 1 when it does
not, after what would not come back, and 2 when there was trouble.
)";
}

std::string ExportVersionText() { return "ostrafel-export " OSTRAFEL_VERSION "\n"; }

}  // namespace ostrafel
