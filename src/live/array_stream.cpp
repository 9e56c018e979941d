// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/array_stream.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include "live/session.h"

namespace ostrafel {

namespace {

// What hiredis's reader tells of a reply, put together into elements.
class ElementCollector {
 public:
  explicit ElementCollector(const TakeElement& take) : take_(take) {}

  // The array begins at depth 0, its elements at 1, their strings at 2. A server that speaks a
  // newer protocol than it was asked for has other kinds of arrays.
  void OnArray(const redisReadTask& task, std::size_t size) {
    if (task.type != REDIS_REPLY_ARRAY) return Refuse();
    switch (DepthOf(task)) {
      case 0:
        size_ = size;
        is_array_ = true;
        return;
      case 1:
        Begin(task, REDIS_REPLY_ARRAY, size);
        return;
      default:
        Refuse();
    }
  }

  void OnString(const redisReadTask& task, const char* text, std::size_t size) {
    switch (DepthOf(task)) {
      case 0:
        if (task.type != REDIS_REPLY_ERROR) return Refuse();
        error_.assign(text, size);
        return;
      case 1:
        if (task.type == REDIS_REPLY_STRING) return Refuse();
        Begin(task, task.type, 1);
        break;
      default:
        if (task.type != REDIS_REPLY_STRING) return Refuse();
    }
    element_.strings.emplace_back(text, size);
    GiveWhole();
  }

  void Refuse() { is_malformed_ = true; }

  // Runs what may raise: no exception may pass through hiredis. False when one came, or when the
  // reply is of no use any more: an endless one is not read on.
  template <typename Call>
  bool Guard(const Call& call) {
    try {
      call();
    } catch (...) {
      raised_ = std::current_exception();
    }
    return raised_ == nullptr && !is_malformed_;
  }

  // Raises what came up on the way. Otherwise returns the size of the array.
  [[nodiscard]] std::size_t Finish(const std::string& command) const {
    if (raised_) std::rethrow_exception(raised_);
    if (!error_.empty()) {
      throw std::runtime_error("Redis answers " + command + " with: " + error_);
    }
    if (is_malformed_ || !is_array_ || given_ != size_) RefuseReply(command);
    return size_;
  }

  // True when the reader was told to stop.
  [[nodiscard]] bool HasStopped() const { return raised_ != nullptr || is_malformed_; }

 private:
  static int DepthOf(const redisReadTask& task) {
    if (task.parent == nullptr) return 0;
    return task.parent->parent == nullptr ? 1 : 2;
  }

  void Begin(const redisReadTask& task, int type, std::size_t size) {
    place_ = static_cast<std::size_t>(task.idx);
    wanted_ = size;
    element_.type = type;
    element_.strings.clear();
    if (type == REDIS_REPLY_ARRAY) GiveWhole();
  }

  void GiveWhole() {
    if (is_malformed_ || element_.strings.size() < wanted_) return;
    ++given_;
    take_(place_, std::exchange(element_, {}));
  }

  const TakeElement& take_;
  std::exception_ptr raised_;
  std::string error_;
  bool is_malformed_ = false;
  bool is_array_ = false;
  std::size_t size_ = 0;
  std::size_t given_ = 0;   // elements
  std::size_t place_ = 0;   // of element_
  std::size_t wanted_ = 0;  // so many strings make it whole
  ArrayElement element_ = {};
};

// Stands for every object that hiredis would make. Newer releases look at its type.
void* Nothing() {
  static redisReply nothing = {};
  return &nothing;
}

template <typename Call>
void* Tell(const redisReadTask* task, const Call& call) {
  auto* collector = static_cast<ElementCollector*>(task->privdata);
  return collector->Guard([&] { call(collector); }) ? Nothing() : nullptr;
}

void* OnString(const redisReadTask* task, char* text, std::size_t size) {
  return Tell(task, [&](ElementCollector* collector) { collector->OnString(*task, text, size); });
}

// The size is an int before hiredis 1.0.
template <typename Size>
void* OnArray(const redisReadTask* task, Size size) {
  return Tell(task, [&](ElementCollector* collector) {
    collector->OnArray(*task, static_cast<std::size_t>(size));
  });
}

void* OnInteger(const redisReadTask* task, long long /*value*/) {
  return Tell(task, [](ElementCollector* collector) { collector->Refuse(); });
}

void* OnNil(const redisReadTask* task) {
  return Tell(task, [](ElementCollector* collector) { collector->Refuse(); });
}

void Free(void* /*object*/) {}

// Without these, hiredis from 1.0 on makes a pointer of the number of a type that a server speaking
// an older protocol does not send, and looks for a reply there.
template <typename Functions>
auto RefuseNewTypes(Functions* functions, int /*preferred*/)
    -> decltype(functions->createDouble, functions->createBool, void()) {
  functions->createDouble = [](const redisReadTask* task, double, char*, std::size_t) {
    return OnNil(task);
  };
  functions->createBool = [](const redisReadTask* task, int) { return OnNil(task); };
}

template <typename Functions>
void RefuseNewTypes(Functions* /*functions*/, long /*otherwise*/) {}

redisReplyObjectFunctions MakeFunctions() {
  redisReplyObjectFunctions functions = {};
  functions.createString = OnString;
  functions.createArray = OnArray;
  functions.createInteger = OnInteger;
  functions.createNil = OnNil;
  functions.freeObject = Free;
  RefuseNewTypes(&functions, 0);
  return functions;
}

// Lets the reader of a connection tell a collector, while it lives.
class ReaderGuard {
 public:
  ReaderGuard(redisReader* reader, ElementCollector* collector)
      : reader_(reader), functions_(reader->fn), data_(reader->privdata) {
    reader_->fn = &own_functions_;
    reader_->privdata = collector;
  }
  ReaderGuard(const ReaderGuard&) = delete;
  ReaderGuard& operator=(const ReaderGuard&) = delete;
  ~ReaderGuard() {
    // A reply that broke off is of no type that the functions before know.
    if (reader_->reply == Nothing()) reader_->reply = nullptr;
    reader_->fn = functions_;
    reader_->privdata = data_;
  }

 private:
  redisReader* reader_;
  decltype(redisReader::fn) functions_;
  void* data_;
  redisReplyObjectFunctions own_functions_ = MakeFunctions();
};

}  // namespace

std::size_t StreamArray(redisContext* context, const std::string& command,
                        const TakeElement& take) {
  ElementCollector collector(take);
  int status = REDIS_OK;
  {
    const ReaderGuard guard(context->reader, &collector);
    void* reply = nullptr;
    status = redisGetReply(context, &reply);
  }
  if (status != REDIS_OK && !collector.HasStopped()) {
    throw std::runtime_error(std::string("the connection to Redis failed: ") + context->errstr);
  }
  return collector.Finish(command);
}

}  // namespace ostrafel
