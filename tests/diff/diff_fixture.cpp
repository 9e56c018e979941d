// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/diff_fixture.h"

#include "diff/comparison.h"
#include "diff/places.h"
#include "document/json_file.h"

namespace ostrafel {

namespace {

std::string TextOf(Change change) {
  switch (change) {
    case Change::kMissing:
      return "missing";
    case Change::kExtra:
      return "extra";
    case Change::kChanged:
      break;
  }
  return "changed";
}

std::string RecordText(const Difference& difference) {
  if (const std::string* field = std::get_if<std::string>(&difference.record)) return " " + *field;
  if (const Element* element = std::get_if<Element>(&difference.record)) {
    return " " + std::to_string(difference.change == Change::kExtra ? element->stored_index
                                                                    : element->wanted_index);
  }
  return "";
}

}  // namespace

void DiffTest::Write(const std::string& file, const std::string& text) const {
  directory.Write("tree/" + file, text);
}

void DiffTest::Include(const std::string& name, const std::string& text) const {
  directory.Write("www/" + name, text);
}

Listing DiffTest::Listed() {
  (void)directory.MakeFolder("tree");
  return ListTree({LoadAction::kCreate, directory.path(path), uri, "index.json"});
}

Server DiffTest::Loaded() {
  Server server;
  Documents.include_root = directory.path("www/");
  const LoadRequest request = {LoadAction::kCreate, directory.path(path), uri, "index.json"};
  const Played played = PlayLoad(&server, request, Listed(), OnFailure::kStop);
  Documents = {};
  EXPECT_EQ(played.status, 0) << played.messages;
  return server;
}

Differences DiffTest::Compare(const Server& stored) {
  Differences differences = CompareStores(stored, Loaded());
  Documents.include_root = directory.path("www/");
  FindPlaces(Listed(), &differences);
  Documents = {};
  return differences;
}

Lines DiffTest::Places(const Server& stored) { return LinesOf(Compare(stored)); }

Lines DiffTest::LinesOf(const Differences& differences) const {
  Lines lines;
  for (const Difference& difference : differences) {
    std::string line = TextOf(difference.change) + " " + difference.key + RecordText(difference);
    if (difference.place) {
      std::string file = difference.place->path;
      for (const std::string& start : {directory.path("tree/"), directory.path() + "/"}) {
        if (file.compare(0, start.size(), start) == 0) file.erase(0, start.size());
      }
      line += " " + file;
      if (difference.place->position.line != 0) {
        line += ":" + std::to_string(difference.place->position.line);
      }
      line += " " + difference.place->pointer;
    } else {
      line += " -";
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace ostrafel
