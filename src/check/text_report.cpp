// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <optional>

#include "check/report.h"
#include "text/source_text.h"
#include "text/text_file.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kLineNumberColumns = 5;  // at least
constexpr std::string_view kBar = " | ";
constexpr std::size_t kMessageLines = 3;  // of a load that fails: the last say what was wrong

const char* ColorOf(Level level) {
  switch (level) {
    case Level::kError:
      return kRed;
    case Level::kWarning:
      return kMagenta;
    case Level::kNote:
      break;
  }
  return kCyan;
}

// Makes the text of one report.
class TextWriter {
 public:
  TextWriter(const CheckOptions& options, bool has_colors)
      : options_(options), has_colors_(has_colors) {}

  std::string Write(const Report& report);

 private:
  void WriteFinding(const Finding& finding);
  void WriteExcerpt(const Place& place);
  void WriteUnusedEntry(const BaselineEntry& entry);
  void WriteMessages(const std::string& action, const Played& played);

  [[nodiscard]] std::string InColor(const std::string& text, const char* color) const {
    return has_colors_ ? Colored(text, color) : text;
  }

  // "path:line:column:", less what is not known.
  [[nodiscard]] std::string Locus(const Place& place) const;

  const CheckOptions& options_;
  bool has_colors_;
  std::string text_;
  std::string source_path_;  // of source_, the file that was shown last
  std::optional<SourceText> source_;
};

std::string TextWriter::Locus(const Place& place) const {
  std::string locus = Printable(ShownPath(options_, place.path)) + ":";
  if (place.position.line == 0) return locus;
  return locus + std::to_string(place.position.line) + ":" + std::to_string(place.position.column) +
         ":";
}

void TextWriter::WriteExcerpt(const Place& place) {
  if (place.position.line == 0) return;
  if (!source_ || source_path_ != place.path) {
    source_.emplace(ReadTextFile(place.path));
    source_path_ = place.path;
  }
  std::string number = std::to_string(place.position.line);
  number.insert(0, kLineNumberColumns - std::min(kLineNumberColumns, number.size()), ' ');
  const std::size_t margin = number.size() + kBar.size();
  const std::optional<Excerpt> excerpt = source_->Show(place.position, kColumns - margin);
  if (!excerpt || excerpt->line.empty()) return;
  text_ += number;
  text_ += kBar;
  text_ += excerpt->line + "\n" + std::string(number.size(), ' ');
  text_ += kBar;
  const std::size_t caret = excerpt->marks.find('^');
  text_ += excerpt->marks.substr(0, caret) + InColor(excerpt->marks.substr(caret), kGreen) + "\n";
}

void TextWriter::WriteFinding(const Finding& finding) {
  const Rule& rule = RuleOf(finding.rule);
  text_ += InColor(Locus(finding.place), kBold) + " " +
           InColor(std::string(NameOf(rule.level)) + ":", ColorOf(rule.level)) + " " +
           Printable(finding.message) + " [" + rule.name + "]\n";
  if (!options_.quiet) WriteExcerpt(finding.place);
  for (const Related& related : finding.related) {
    text_ += "  " + InColor(Locus(related.place), kBold) + " " + Printable(related.message) + "\n";
  }
}

void TextWriter::WriteUnusedEntry(const BaselineEntry& entry) {
  const std::string file = Printable(options_.baseline.value_or("baseline"));
  text_ += InColor(file + ":" + std::to_string(entry.line) + ":", kBold) + " " +
           InColor("note:", ColorOf(Level::kNote)) +
           " nothing is accepted by this entry: " + BaselineLine(entry) + "\n";
}

void TextWriter::WriteMessages(const std::string& action, const Played& played) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end = 0; (end = played.messages.find('\n', start)) != std::string::npos;
       start = end + 1) {
    lines.push_back(played.messages.substr(start, end - start));
  }
  if (lines.empty()) return;
  const std::size_t first = lines.size() - std::min(lines.size(), kMessageLines);
  text_ += action + (first == 0 ? " prints:\n" : " prints in the end:\n");
  for (std::size_t i = first; i < lines.size(); ++i) text_ += "  " + Printable(lines[i]) + "\n";
}

std::string TextWriter::Write(const Report& report) {
  for (const Finding& finding : report.findings) WriteFinding(finding);
  for (const BaselineEntry& entry : report.unused_entries) WriteUnusedEntry(entry);
  if (options_.quiet) return text_;
  if (report.create.status != 0) {
    WriteMessages("create", report.create);
  } else if (report.update.status != 0) {
    WriteMessages("update", report.update);
  }
  return text_ + SummaryLine(report) + "\n";
}

}  // namespace

std::string TextReport(const CheckOptions& options, const Report& report, bool has_colors) {
  return TextWriter(options, has_colors).Write(report);
}

}  // namespace ostrafel
