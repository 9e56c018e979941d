#ifndef OSTRAFEL_TESTS_SYSTEM_MODEL_CHECK_H_
#define OSTRAFEL_TESTS_SYSTEM_MODEL_CHECK_H_

#include <string>
#include <vector>

#include "system/system_fixture.h"

/// Runs of the real program beside runs of the model: the same arguments, the same store before.
class ModelCheckedTest : public SystemTest {
 protected:
  /// Runs the program and the model and compares
  ///   - the outputs, the status and every command, with the division into flights, of the program
  ///     with those of the model when it gets the server's own answers;
  ///   - the whole store afterwards with what the model makes of the store before, in memory.
  /// The second takes a deterministic answer to SCAN and KEYS for granted: the order in which keys
  /// are found does not matter for what is stored.
  void RunBoth(const std::vector<std::string>& arguments);
};

#endif  // OSTRAFEL_TESTS_SYSTEM_MODEL_CHECK_H_
