// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/test_store.h"

#include <fcntl.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "connection/reply.h"
#include "support/redis_reply.h"

namespace {

constexpr const char* kBar = " | ";

model::Command Split(const std::string& line) {
  const std::string bar = kBar;
  model::Command command;
  std::size_t start = 0;
  for (std::size_t end = line.find(bar); end != std::string::npos; end = line.find(bar, start)) {
    command.push_back(line.substr(start, end - start));
    start = end + bar.size();
  }
  command.push_back(line.substr(start));
  return command;
}

}  // namespace

TestStore::TestStore(const std::string& socket_path)
    : context_(redisConnectUnix(socket_path.c_str())) {
  if (!context_ || context_->err != 0) {
    throw std::runtime_error("cannot connect to the server at " + socket_path);
  }
  // The programs that a test starts get no descriptor that a user's shell would not give them.
  (void)fcntl(context_->fd, F_SETFD, FD_CLOEXEC);
}

model::Reply TestStore::Run(const model::Command& command) {
  std::vector<const char*> arguments;
  std::vector<std::size_t> sizes;
  for (const std::string& argument : command) {
    arguments.push_back(argument.data());
    sizes.push_back(argument.size());
  }
  const ostrafel::Reply reply(static_cast<redisReply*>(redisCommandArgv(
      context_.get(), static_cast<int>(arguments.size()), arguments.data(), sizes.data())));
  if (!reply) throw std::runtime_error("no reply to " + command.front());
  return Convert(*reply);
}

model::Reply TestStore::Run(const std::string& line) { return Run(Split(line)); }

model::Store TestStore::Contents() {
  model::Store contents;
  const model::Reply keys = Run(model::Command{"KEYS", "*"});
  for (const model::Reply& found : keys.elements) {
    const std::string& key = found.text;
    const std::string type = Run(model::Command{"TYPE", key}).text;
    if (type == "hash") {
      model::Hash hash;
      const std::vector<model::Reply> pairs = Run(model::Command{"HGETALL", key}).elements;
      for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) hash[pairs[i].text] = pairs[i + 1].text;
      contents[key].value = hash;
    } else if (type == "list") {
      model::List list;
      for (const model::Reply& element : Run(model::Command{"LRANGE", key, "0", "-1"}).elements) {
        list.push_back(element.text);
      }
      contents[key].value = list;
    } else if (type == "string") {
      contents[key].value = Run(model::Command{"GET", key}).text;
    } else {
      throw std::runtime_error(key + " holds the unexpected type " + type);
    }
  }
  return contents;
}

void TestStore::Fill(const model::Store& contents) {
  (void)Run("FLUSHALL");
  for (const auto& [key, stored] : contents) {
    if (const auto* hash = std::get_if<model::Hash>(&stored.value)) {
      for (const auto& [field, value] : *hash) (void)Run(model::Command{"HSET", key, field, value});
    } else if (const auto* list = std::get_if<model::List>(&stored.value)) {
      for (const std::string& element : *list) (void)Run(model::Command{"RPUSH", key, element});
    } else {
      (void)Run(model::Command{"SET", key, std::get<std::string>(stored.value)});
    }
  }
}

std::string TestStore::Dump() { return model::Dump(Contents()); }
