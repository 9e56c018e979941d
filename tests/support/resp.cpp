// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/resp.h"

#include <stdexcept>
#include <utility>
#include <vector>

namespace {

// Reads from a position in a text and remembers whether the text ended too early.
class Reader {
 public:
  explicit Reader(const std::string& bytes) : bytes_(bytes) {}

  std::size_t position() const { return position_; }
  bool is_whole() const { return is_whole_; }

  model::Reply ReadReply() {
    const std::string line = ReadLine();
    if (!is_whole_) return {};
    const std::string rest = line.substr(1);
    switch (line[0]) {
      case '+':
        return model::StatusReply(rest);
      case '-':
        return model::ErrorReply(rest);
      case ':':
        return model::IntegerReply(std::stoll(rest));
      case '$':
        return ReadBulk(std::stoll(rest));
      case '*':
        return ReadArray(std::stoll(rest));
      default:
        throw std::runtime_error("not a reply: " + line);
    }
  }

 private:
  std::string ReadLine() {
    const std::size_t end = bytes_.find("\r\n", position_);
    if (end == std::string::npos) {
      is_whole_ = false;
      return {};
    }
    std::string line = bytes_.substr(position_, end - position_);
    position_ = end + 2;
    if (line.empty()) throw std::runtime_error("an empty line where a reply begins");
    return line;
  }

  model::Reply ReadBulk(long long size) {
    if (size < 0) return model::NilReply();
    const auto length = static_cast<std::size_t>(size);
    if (bytes_.size() < position_ + length + 2) {
      is_whole_ = false;
      return {};
    }
    std::string text = bytes_.substr(position_, length);
    position_ += length + 2;
    return model::StringReply(std::move(text));
  }

  model::Reply ReadArray(long long size) {
    if (size < 0) return model::NilReply();
    std::vector<model::Reply> elements;
    for (long long i = 0; i < size && is_whole_; ++i) elements.push_back(ReadReply());
    return model::ArrayReply(std::move(elements));
  }

  const std::string& bytes_;
  std::size_t position_ = 0;
  bool is_whole_ = true;
};

}  // namespace

std::optional<ReceivedReply> TakeReply(std::string* bytes) {
  Reader reader(*bytes);
  model::Reply reply = reader.ReadReply();
  if (!reader.is_whole()) return std::nullopt;
  ReceivedReply received{std::move(reply), bytes->substr(0, reader.position())};
  bytes->erase(0, reader.position());
  return received;
}

std::optional<model::Command> TakeCommand(std::string* bytes) {
  // A command has the form of a reply that is an array of strings.
  const std::optional<ReceivedReply> received = TakeReply(bytes);
  if (!received) return std::nullopt;
  if (received->reply.type != model::Reply::Type::kArray) {
    throw std::runtime_error("not a command: " + received->bytes);
  }
  model::Command command;
  for (const model::Reply& element : received->reply.elements) command.push_back(element.text);
  return command;
}

std::string Format(const model::Command& command) {
  std::string bytes = "*" + std::to_string(command.size()) + "\r\n";
  for (const std::string& argument : command) bytes += Format(model::StringReply(argument));
  return bytes;
}

std::string Format(const model::Reply& reply) {
  using Type = model::Reply::Type;
  switch (reply.type) {
    case Type::kStatus:
      return "+" + reply.text + "\r\n";
    case Type::kError:
      return "-" + reply.text + "\r\n";
    case Type::kInteger:
      return ":" + std::to_string(reply.integer) + "\r\n";
    case Type::kString:
      return "$" + std::to_string(reply.text.size()) + "\r\n" + reply.text + "\r\n";
    case Type::kArray: {
      std::string bytes = "*" + std::to_string(reply.elements.size()) + "\r\n";
      for (const model::Reply& element : reply.elements) bytes += Format(element);
      return bytes;
    }
    case Type::kNil:
    default:
      return "$-1\r\n";
  }
}
