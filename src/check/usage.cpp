// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/usage.h"

#include "tool/tool.h"

namespace ostrafel {

const char* const ToolName = "ostrafel-check";

std::string HelpText() {
  return R"(Usage: ostrafel-check [options] <StaticDataPath> [URI] [FileName]

Plays what Ostrafel would do with a tree of static Redfish resources, in memory
and without a server, and tells what would fail, get lost or surprise.

  StaticDataPath         a folder, or a file whose name ends in .json
  URI                    the key of the topmost file (/redfish/v1)
  FileName               the file to load in each folder (index.json)

What is looked for:
  --www DIR              the folder of the files that "&&File" names
                         (/usr/local/nginx/www/)
  --select LIST          look for these rules only: names or beginnings of names
                         such as link-, all, default, with commas between them
  --ignore LIST          do not look for these rules
  --baseline FILE        leave out the findings that this file accepts
  --write-baseline FILE  make this file accept all findings
  --fail-on LEVEL        the lowest level that counts for the status: error,
                         warning or note (error)

What is shown:
  --format FORMAT        text, json, sarif or github (text)
  --color WHEN           auto, always or never (auto: on a terminal)
  -q, --quiet            no lines of files, no last line, no progress
  --print-store          what a create leaves in an empty store, as JSON, and
                         nothing else

Without a tree:
  --list-rules           all rules, their levels and what they are about
  --explain RULE         what a rule is about, and what to do
  -h, --help             this text
  --version              the version

The status is 0 when nothing that counts was found, 1 when something was, and 2
when the check could not be made.
)";
}

std::string VersionText() { return "ostrafel-check " OSTRAFEL_VERSION "\n"; }

}  // namespace ostrafel
