// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/run.h"

#include <cstddef>
#include <exception>
#include <string>
#include <utility>

#include "connection/broken_pipe.h"
#include "document/file_inclusion.h"
#include "export/document.h"
#include "export/inclusion_check.h"
#include "export/interruption.h"
#include "export/loss.h"
#include "export/options.h"
#include "export/snapshot.h"
#include "export/tree_output.h"
#include "live/server_choice.h"
#include "live/session.h"
#include "text/utf8.h"
#include "tool/grouped.h"
#include "tool/output.h"
#include "tool/tool.h"

namespace ostrafel {

namespace {

constexpr int kWhole = 0;
constexpr int kIncomplete = 1;

constexpr const char* kNoFolder = "no folder can be named after the key";

// What was exported.
struct Exported {
  std::size_t documents = 0;
  Losses losses;
};

std::string ReasonOf(const KeyEntry& entry) {
  if (entry.second.document != 0) return "stands only in what is left out";
  if (entry.second.type == KeyType::kOther) return "holds neither a hash nor a list";
  if (IsResource(entry)) return kNoFolder;
  const bool is_list = entry.second.type == KeyType::kList;
  return std::string(is_list ? "a list" : "a hash") + " that no document has a record of";
}

// Makes a document with "&&File" if a load of its file makes the same of it, else without. Of a
// root that has its key from its place, a load needs no "@odata.id".
DocumentText WithInclusion(const PlannedDocument& document, const ExportOptions& options,
                           const StoreKeys& keys, const Contents& contents, TreeOutput* output) {
  const KeyEntry& root = *document.root;
  const std::string& folder = document.folder.path;
  const std::string listed_key = document.folder.has_key ? root.first : options.uri;
  for (const RootForm form : {RootForm::kWithItsKey, RootForm::kAsStored}) {
    DocumentText made = WriteDocument(root, form, keys, contents);
    output->Write(folder, made.text);
    if (ComesBack(output->PathOf(folder), listed_key, contents)) return made;
    CheckInterruption();
  }
  output->Remove(folder);
  DocumentText made = WriteDocument(root, RootForm::kWithoutInclusion, keys, contents);
  made.losses.insert(
      {root.first, FileMember, "a create would include a file that is another or not there"});
  return made;
}

// Writes the file of a document, unless a load would store it at another key. Tells what it has.
WrittenKeys WriteResource(const PlannedDocument& document, const ExportOptions& options,
                          const StoreKeys& keys, const Contents& contents, TreeOutput* output,
                          Exported* exported) {
  const KeyEntry& root = *document.root;
  const Folder& folder = document.folder;
  DocumentText made = root.second.includes_file
                          ? WithInclusion(document, options, keys, contents, output)
                          : WriteDocument(root, RootForm::kAsStored, keys, contents);
  exported->losses.merge(made.losses);
  if (!folder.has_key && !made.tells_key) {
    exported->losses.insert({root.first, "", kNoFolder});
    return {};
  }
  if (folder.is_spare) {
    exported->losses.insert({root.first, "", kNoFolder + (": it stands in " + folder.path)});
  }
  // One that includes a file has been written to be tried.
  if (!output->Has(folder.path)) output->Write(folder.path, made.text);
  ++exported->documents;
  return std::move(made.keys);
}

// Adds the keys that are in no document, but for those of which that is told already.
void AddLostKeys(const Snapshot& snapshot, Losses* losses) {
  for (const KeyEntry* entry : snapshot.lost) {
    if (!losses->HasWhole(entry->first)) losses->insert({entry->first, "", ReasonOf(*entry)});
  }
}

void AddStrangers(const TreeOutput& output, Losses* losses) {
  for (const std::string& path : output.Strangers()) {
    losses->insert({path, "", "is not of this export, and a create would load it"});
  }
}

void PrintLosses(const Losses& losses) {
  if (losses.empty()) return;
  for (const auto& [key, records] : losses.ByKey()) {
    const std::string start = ShownName(key) + ": ";
    for (const LostRecord& record : records) {
      PrintTrouble(start + (record.shown.empty() ? "" : record.shown + ": ") + record.reason);
    }
  }
  const std::size_t count = losses.size();
  PrintTrouble("not all comes back: " + Grouped(count) + (count == 1 ? " loss" : " losses") +
               " at " + Counted(losses.ByKey().size(), "key"));
}

int StatusOf(const Exported& exported) { return exported.losses.empty() ? kWhole : kIncomplete; }

// True when there is no key at all: then it is no wonder that there are none at the URI.
bool IsEmptyStore(redisContext* context) {
  const Reply reply = AskServer(context, {"DBSIZE"});
  RefuseError(*reply, "DBSIZE");
  if (reply->type != REDIS_REPLY_INTEGER) RefuseReply("DBSIZE");
  return reply->integer == 0;
}

int WriteTree(redisContext* context, const ExportOptions& options) {
  CatchInterruptions(context->fd);
  SurviveJsonMemory();
  TreeOutput output(options.static_data_path, options.is_forced);
  Exported exported;
  const DocumentTaker taker = {
      [&] {
        output.Begin();
        exported = {};
      },
      [&](const PlannedDocument& document, const StoreKeys& keys, const Contents& contents) {
        CheckInterruption();
        WrittenKeys written = WriteResource(document, options, keys, contents, &output, &exported);
        CheckJsonMemory();
        return written;
      }};
  const Snapshot snapshot =
      ReadDocuments(context, {options.uri, true}, options.windows_names, taker);
  CheckJsonMemory();
  if (exported.documents == 0 && snapshot.lost.empty() && !IsEmptyStore(context)) {
    PrintTrouble(options.uri + ": the store holds nothing at or below it");
    return kTrouble;
  }
  AddLostKeys(snapshot, &exported.losses);
  CheckInterruption();
  output.Finish();
  try {
    if (options.is_forced) AddStrangers(output, &exported.losses);
  } catch (const std::exception&) {
    // All is in its place, so that what does not come back is to be known all the same.
    PrintLosses(exported.losses);
    throw;
  }
  PrintLosses(exported.losses);
  if (exported.documents == 0) {
    PrintTrouble(options.uri + ": the store holds no resource at or below it");
  }
  const bool is_told =
      options.quiet || WriteOutput(Counted(exported.documents, "resource") + " written to " +
                                   Printable(options.static_data_path) + "\n");
  return is_told ? StatusOf(exported) : kTrouble;
}

int PrintResource(redisContext* context, const ExportOptions& options) {
  Exported exported;
  std::string text;
  const DocumentTaker taker = {
      [&] { exported = {}; },
      [&](const PlannedDocument& document, const StoreKeys& keys, const Contents& contents) {
        ++exported.documents;
        DocumentText made = WriteDocument(*document.root, RootForm::kAsStored, keys, contents);
        text = std::move(made.text);
        exported.losses = std::move(made.losses);
        return std::move(made.keys);
      }};
  const Snapshot snapshot = ReadDocuments(context, {options.uri, false}, false, taker);
  if (exported.documents == 0) {
    PrintTrouble(options.uri + ": the store holds no resource there");
    return kTrouble;
  }
  AddLostKeys(snapshot, &exported.losses);
  PrintLosses(exported.losses);
  return WriteOutput(text) ? StatusOf(exported) : kTrouble;
}

int Run(int argc, char** argv) {
  const ExportCommandLine line = ParseExportCommandLine(argc, argv);
  if (!line.options) return line.status;
  const ExportOptions& options = *line.options;
  if (!SetIncludeRoot(options)) return kTrouble;
  SurviveBrokenPipe();
  const StoreConnection connection = ConnectTo(options.server);
  if (options.prints) return PrintResource(connection.get(), options);
  try {
    return WriteTree(connection.get(), options);
  } catch (const std::exception&) {
    // The signal says it all.
    if (!IsInterrupted()) throw;
  }
  return kTrouble;
}

}  // namespace

int RunExport(int argc, char** argv) {
  const int status = RunTool(argc, argv, Run);
  EndByInterruption();
  return status;
}

}  // namespace ostrafel
