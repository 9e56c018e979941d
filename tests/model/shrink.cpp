// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/shrink.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "model/json_value.h"
#include "model/shrink_json.h"
#include "model/shrink_list.h"
#include "support/temp_directory.h"

namespace model {
namespace {

// Ends a search from any depth.
struct OutOfTime {};

std::optional<JsonValue> Parse(const std::string& document) {
  const TempDirectory folder;  // the model reads documents from files only
  std::string ignored;
  return LoadJson(folder.Write("document.json", document), ignored);
}

// The parts of a path, key or id; joined again they give the same text.
std::vector<std::string> Segments(const std::string& text) {
  std::vector<std::string> segments;
  std::size_t start = 0;
  for (std::size_t end = text.find('/'); end != std::string::npos; end = text.find('/', start)) {
    segments.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  segments.push_back(text.substr(start));
  return segments;
}

std::string Joined(const std::vector<std::string>& segments) {
  std::string text;
  for (const std::string& segment : segments) text += "/" + segment;
  return text.substr(text.empty() ? 0 : 1);
}

using Change = std::function<void(std::string&)>;

void ChangeTexts(JsonValue& value, const Change& change) {
  change(value.text);
  for (JsonMember& member : value.members) {
    change(member.name);
    ChangeTexts(member.value, change);
  }
  for (JsonValue& element : value.elements) ChangeTexts(element, change);
}

// Offers every name, path and string of the sequence to `change`.
void ChangeTexts(Sequence& sequence, const Change& change) {
  for (PlannedRun& run : sequence) {
    change(run.uri);
    for (TreeFolder& folder : run.tree) {
      change(folder.path);
      if (!folder.document) continue;
      std::optional<JsonValue> document = Parse(*folder.document);
      if (!document) continue;
      ChangeTexts(*document, change);
      folder.document = JsonText(*document);
    }
  }
}

class Search {
 public:
  Search(Sequence sequence, const std::function<bool(const Sequence&)>& fails,
         std::chrono::milliseconds time_limit)
      : fails_(fails), deadline_(std::chrono::steady_clock::now() + time_limit) {
    found_.sequence = std::move(sequence);
  }

  Shrunk Run() {
    try {
      while (ShrinkOnce()) continue;
      found_.is_whole = true;
    } catch (const OutOfTime&) {
    }
    return found_;
  }

 private:
  // The one gate: whatever passes is the smallest sequence so far.
  bool Accepts(const Sequence& candidate) {
    if (std::chrono::steady_clock::now() > deadline_) throw OutOfTime();
    if (Describe(candidate).size() >= Describe(found_.sequence).size()) return false;
    ++found_.attempts;
    if (!fails_(candidate)) return false;
    found_.sequence = candidate;
    return true;
  }

  // True when it made the sequence smaller.
  bool ShrinkOnce() {
    const std::size_t before = Describe(found_.sequence).size();
    (void)ShrinkList(found_.sequence, [&](const Sequence& fewer) { return Accepts(fewer); });
    for (std::size_t i = 0; i < found_.sequence.size(); ++i) ShrinkTree(i);
    for (std::size_t i = 0; i < found_.sequence.size(); ++i) {
      for (std::size_t j = 0; j < found_.sequence[i].tree.size(); ++j) ShrinkDocument(i, j);
    }
    for (std::size_t i = 0; i < found_.sequence.size(); ++i) {
      for (std::size_t j = 0; j < found_.sequence[i].tree.size(); ++j) ShrinkPath(i, j);
    }
    ShortenSegmentsEverywhere();
    return Describe(found_.sequence).size() < before;
  }

  void ShrinkTree(std::size_t run) {
    (void)ShrinkList(found_.sequence[run].tree, [&](const Tree& fewer) {
      Sequence candidate = found_.sequence;
      candidate[run].tree = fewer;
      return Accepts(candidate);
    });
  }

  void ShrinkDocument(std::size_t run, std::size_t folder) {
    const std::optional<std::string> text = found_.sequence[run].tree[folder].document;
    const std::optional<JsonValue> document = text ? Parse(*text) : std::nullopt;
    if (!document) return;
    const auto accepts = [&](const JsonValue& simpler) {
      if (simpler.kind != JsonValue::Kind::kObject) return false;  // no resource
      Sequence candidate = found_.sequence;
      candidate[run].tree[folder].document = JsonText(simpler);
      return Accepts(candidate);
    };
    (void)accepts(*document);  // without the spaces
    (void)ShrinkJson(*document, accepts);
  }

  // Moves a document up. A folder that is there already keeps its own.
  void ShrinkPath(std::size_t run, std::size_t folder) {
    const std::vector<std::string> segments = Segments(found_.sequence[run].tree[folder].path);
    (void)ShrinkList(segments, [&](const std::vector<std::string>& fewer) {
      Sequence candidate = found_.sequence;
      Tree& tree = candidate[run].tree;
      const std::string path = Joined(fewer);
      const bool is_path = path.empty() || path.front() == '/';
      const bool is_taken = std::any_of(
          tree.begin(), tree.end(), [&](const TreeFolder& other) { return other.path == path; });
      if (!is_path || is_taken) return false;
      tree[folder].path = path;
      return Accepts(candidate);
    });
  }

  // Names that must stay equal to each other, as those in a key, an id and a path must, can only be
  // shortened together.
  void ShortenSegmentsEverywhere() {
    std::set<std::string> segments;
    Sequence unchanged = found_.sequence;
    ChangeTexts(unchanged, [&](std::string& text) {
      for (const std::string& segment : Segments(text)) segments.insert(segment);
    });
    for (const std::string& segment : segments) {
      if (segment.size() < 2) continue;
      for (char letter = 'a'; letter <= 'z'; ++letter) {
        if (segments.count(std::string(1, letter)) != 0) continue;
        if (Replace(segment, std::string(1, letter))) segments.insert(std::string(1, letter));
        break;
      }
    }
  }

  bool Replace(const std::string& old_segment, const std::string& new_segment) {
    Sequence candidate = found_.sequence;
    ChangeTexts(candidate, [&](std::string& text) {
      std::vector<std::string> segments = Segments(text);
      std::replace(segments.begin(), segments.end(), old_segment, new_segment);
      text = Joined(segments);
    });
    return Accepts(candidate);
  }

  const std::function<bool(const Sequence&)>& fails_;
  const std::chrono::steady_clock::time_point deadline_;
  Shrunk found_;
};

}  // namespace

std::string Describe(const Sequence& sequence, const std::string& file_name) {
  std::string text;
  for (const PlannedRun& run : sequence) {
    text += "Ostrafel " + run.action + " TREE " + run.uri + "\n";
    for (const TreeFolder& folder : run.tree) {
      text += "  TREE" + folder.path + "/";
      text += folder.document ? file_name + ": " + *folder.document + "\n" : "\n";
    }
  }
  return text;
}

Shrunk Shrink(const Sequence& sequence, const std::function<bool(const Sequence&)>& fails,
              std::chrono::milliseconds time_limit) {
  return Search(sequence, fails, time_limit).Run();
}

}  // namespace model
