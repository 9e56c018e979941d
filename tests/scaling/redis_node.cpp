// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "scaling/redis_node.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace {

// Ports that nothing uses. They are held together, so that they differ.
std::array<std::string, 2> FreePorts() {
  std::array<int, 2> listeners = {};
  std::array<std::string, 2> ports;
  for (std::size_t i = 0; i < ports.size(); ++i) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    listeners[i] = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listeners[i], generic, size) != 0 || getsockname(listeners[i], generic, &size) != 0) {
      throw std::runtime_error("no free port");
    }
    ports[i] = std::to_string(ntohs(address.sin_port));
  }
  for (const int listener : listeners) (void)close(listener);
  return ports;
}

}  // namespace

bool Eventually(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

RedisNode::RedisNode(const std::vector<std::string>& settings) {
  const std::array<std::string, 2> ports = FreePorts();
  port_ = ports[0];
  bus_port_ = ports[1];
  std::string config = "bind 127.0.0.1\nport " + port_ + "\ncluster-port " + bus_port_ +
                       "\nunixsocket " + Socket() + "\ndir " + files_.path() + "\n";
  for (const std::string& setting : settings) config += setting + "\n";
  files_.Write("redis.conf", config);
  Start();
}

RedisNode::~RedisNode() {
  if (!run_.valid()) return;
  Signal(SIGKILL);
  run_.wait();
}

void RedisNode::Start() {
  RunOptions options;
  options.time_limit = std::chrono::hours(24);
  // The signal comes at the end of the thread that started the server, which waits for it.
  options.in_child = [] { (void)prctl(PR_SET_PDEATHSIG, SIGKILL); };
  std::promise<pid_t> started;
  options.on_start = [&](int process_id) { started.set_value(process_id); };
  const std::vector<std::string> command = {"/usr/bin/env", "redis-server", ConfigPath()};
  run_ = std::async(std::launch::async, [=] { return RunProgram(command, options); });
  process_id_ = started.get_future().get();
  const bool has_come = Eventually([&] { return HasEnded() || IsReady(); });
  if (HasEnded()) throw std::runtime_error("redis-server has ended: " + run_.get().out);
  if (!has_come) throw std::runtime_error("redis-server does not answer");
}

bool RedisNode::HasEnded() const {
  return run_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

// Until it has read its files, a server answers with an error.
bool RedisNode::IsReady() {
  try {
    if (!store_) store_ = std::make_unique<TestStore>(Socket());
  } catch (const std::runtime_error&) {
    return false;
  }
  return store_->Run("PING").text.rfind("LOADING", 0) != 0;
}

Finished RedisNode::End(int signal) {
  Signal(signal);
  return WaitForEnd();
}

Finished RedisNode::WaitForEnd() {
  store_.reset();
  if (run_.wait_for(std::chrono::minutes(1)) != std::future_status::ready) {
    throw std::runtime_error("redis-server does not end");
  }
  return run_.get();
}

void RedisNode::Signal(int signal) const { (void)kill(process_id_, signal); }

std::string RedisNode::Info(const std::string& name) {
  const std::string text = "\n" + store_->Run("INFO").text;
  const std::string start = "\n" + name + ":";
  const std::size_t found = text.find(start);
  if (found == std::string::npos) return "";
  const std::size_t value = found + start.size();
  return text.substr(value, text.find('\r', value) - value);
}
