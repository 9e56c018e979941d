// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_DOCUMENT_DOCUMENT_H_
#define OSTRAFEL_DOCUMENT_DOCUMENT_H_

#include <jansson.h>

#include <memory>

namespace ostrafel {

struct DocumentDeleter {
  void operator()(json_t* value) const { json_decref(value); }
};
/// The owner of one counted reference to a JSON value (jansson).
using Document = std::unique_ptr<json_t, DocumentDeleter>;

}  // namespace ostrafel

#endif  // OSTRAFEL_DOCUMENT_DOCUMENT_H_
