// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_EXPORT_NASTY_TREE_H_
#define OSTRAFEL_TESTS_EXPORT_NASTY_TREE_H_

#include <random>
#include <string>

#include "model/random_tree.h"

namespace ostrafel {

/// A random tree for the URI, of names and ids that are hard to bring back: blanks, slashes and
/// markers in them, keys of other resources and their parts, no "@odata.id" that is no string. All
/// of it can be created, unless two kinds of values meet at one key. Equal generators give equal
/// trees on every platform.
[[nodiscard]] model::Tree NastyTree(std::mt19937_64& generator, const std::string& uri);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_EXPORT_NASTY_TREE_H_
