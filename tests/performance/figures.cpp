// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "performance/figures.h"

#include <jansson.h>

#include <cstdlib>
#include <iomanip>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "document/document.h"
#include "support/process.h"
#include "support/sandbox.h"

namespace {

constexpr const char* kVersionsMember = "recorded_with";

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// What a query of dpkg prints.
std::string Ask(const std::vector<std::string>& question) {
  const Finished answer = RunProgram(question);
  return answer.status == 0 && !answer.out.empty() ? FirstLine(answer.out) : "unknown";
}

const json_t* Member(const json_t* object, const std::string& name) {
  const json_t* member = json_object_get(object, name.c_str());
  if (member == nullptr) throw std::runtime_error("the file of figures has no " + name);
  return member;
}

Cost CostOf(const json_t* run) {
  return {json_integer_value(Member(run, "instructions")),
          json_integer_value(Member(run, "commands")),
          json_integer_value(Member(run, "round_trips"))};
}

}  // namespace

Versions MachineVersions() {
  const std::string architecture = Ask({"/usr/bin/dpkg", "--print-architecture"});
  Versions versions = {{"architecture", architecture}, {"compiler", __VERSION__}};
  // The development packages, because the names of the others change with their versions.
  for (const std::string package :
       {"libc6", "libhiredis-dev", "libjansson-dev", "libstdc++6", "valgrind"}) {
    const std::string of_this_machine = package + ":" + architecture;
    versions[package] = Ask({"/usr/bin/dpkg-query", "-W", "-f=${Version}\n", of_this_machine});
  }
  return versions;
}

Figures ReadFigures(const std::string& path) {
  json_error_t error;
  const ostrafel::Document document(json_load_file(path.c_str(), 0, &error));
  if (!document) throw std::runtime_error(path + ": " + error.text);
  Figures figures;
  const char* name = nullptr;
  json_t* value = nullptr;
  json_object_foreach(document.get(), name, value) {
    if (name != std::string(kVersionsMember)) figures.runs[name] = CostOf(value);
  }
  json_object_foreach(const_cast<json_t*>(Member(document.get(), kVersionsMember)), name, value) {
    figures.recorded_with[name] = json_string_value(value);
  }
  return figures;
}

void WriteFigures(const std::string& path, const Figures& figures) {
  const ostrafel::Document document(json_object());
  for (const auto& [name, cost] : figures.runs) {
    json_object_set_new(
        document.get(), name.c_str(),
        json_pack("{s:I, s:I, s:I}", "instructions", static_cast<json_int_t>(cost.instructions),
                  "commands", static_cast<json_int_t>(cost.commands), "round_trips",
                  static_cast<json_int_t>(cost.round_trips)));
  }
  json_t* versions = json_object();
  for (const auto& [name, version] : figures.recorded_with) {
    json_object_set_new(versions, name.c_str(), json_string(version.c_str()));
  }
  json_object_set_new(document.get(), kVersionsMember, versions);
  const std::unique_ptr<char, decltype(&std::free)> text(
      json_dumps(document.get(), JSON_INDENT(2) | JSON_SORT_KEYS), &std::free);
  if (!text) throw std::runtime_error("the figures cannot be written as JSON");
  WriteFile(path, text.get() + std::string("\n"));
}

double Excess(long long counted, long long expected) {
  return 100.0 * static_cast<double>(counted - expected) / static_cast<double>(expected);
}

std::string Describe(const Versions& recorded_with, const Versions& here) {
  std::set<std::string> names;
  for (const auto& [name, version] : recorded_with) names.insert(name);
  for (const auto& [name, version] : here) names.insert(name);
  const auto version_in = [](const Versions& versions, const std::string& name) {
    const auto found = versions.find(name);
    return found == versions.end() ? std::string("-") : found->second;
  };
  std::ostringstream text;
  text << std::left << std::setw(18) << "" << std::setw(24) << "recorded with"
       << "this machine\n";
  for (const std::string& name : names) {
    const std::string before = version_in(recorded_with, name);
    const std::string now = version_in(here, name);
    text << "  " << std::setw(16) << name << std::setw(24) << before << now
         << (before == now ? "" : "   <- differs") << "\n";
  }
  return text.str();
}
