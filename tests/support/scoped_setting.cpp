// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/scoped_setting.h"

#include <stdexcept>

ScopedSetting::ScopedSetting(TestStore* store, const std::string& name, const std::string& value)
    : store_(store), name_(name) {
  const model::Reply found = store_->Run(model::Command{"CONFIG", "GET", name_});
  if (found.elements.size() != 2) throw std::runtime_error("no setting of the server: " + name_);
  before_ = found.elements[1].text;
  const model::Reply reply = store_->Run(model::Command{"CONFIG", "SET", name_, value});
  if (!(reply == model::StatusReply("OK"))) throw std::runtime_error(reply.text);
}

ScopedSetting::~ScopedSetting() {
  (void)store_->Run(model::Command{"CONFIG", "SET", name_, before_});
}
