// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/report.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

const char* CommandOf(Level level) { return level == Level::kNote ? "notice" : NameOf(level); }

// Line ends and percent signs as the runners take them.
std::string Escape(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '%') {
      result += "%25";
    } else if (c == '\r') {
      result += "%0D";
    } else if (c == '\n') {
      result += "%0A";
    } else {
      result += c;
    }
  }
  return result;
}

// What stands in front of the message must not hold what ends it there. The runners read UTF-8.
std::string EscapeProperty(const std::string& text) {
  std::string result;
  for (const char c : Printable(Escape(text))) {
    if (c == ':') {
      result += "%3A";
    } else if (c == ',') {
      result += "%2C";
    } else {
      result += c;
    }
  }
  return result;
}

// "file=...,line=...,col=...,", less what is not known.
std::string PropertiesOf(const CheckOptions& options, const Place& place) {
  if (place.path.empty()) return "";
  std::string properties = "file=" + EscapeProperty(ShownPath(options, place.path)) + ",";
  if (place.position.line != 0) {
    properties += "line=" + std::to_string(place.position.line) +
                  ",col=" + std::to_string(place.position.column) + ",";
  }
  return properties;
}

// A line of the message, for what GitHub has no place for.
std::string TextOf(const CheckOptions& options, const Related& related) {
  std::string text = ShownPath(options, related.place.path) + ":";
  if (related.place.position.line != 0) {
    text += std::to_string(related.place.position.line) + ":" +
            std::to_string(related.place.position.column) + ":";
  }
  return Printable(text + " " + related.message);
}

}  // namespace

std::string GithubReport(const CheckOptions& options, const Report& report) {
  std::string text;
  for (const Finding& finding : report.findings) {
    const Rule& rule = RuleOf(finding.rule);
    std::string message = Printable(finding.message);
    for (const Related& related : finding.related) message += "\n" + TextOf(options, related);
    text += std::string("::") + CommandOf(rule.level) + " " + PropertiesOf(options, finding.place) +
            "title=" + rule.name + "::" + Escape(message) + "\n";
  }
  for (const BaselineEntry& entry : report.unused_entries) {
    text += "::notice title=baseline::nothing is accepted by this entry: " +
            Escape(BaselineLine(entry)) + "\n";
  }
  return options.quiet ? text : text + SummaryLine(report) + "\n";
}

}  // namespace ostrafel
