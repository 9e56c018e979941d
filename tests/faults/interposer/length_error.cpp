// A text or a list that is longer than the C++ library allows: more than half of all memory that
// can be addressed. No real one gets there. The exception then comes out of the append that needs
// memory, and from there it is thrown here.
#include <cstddef>
#include <new>
#include <stdexcept>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

namespace {

// The name of operator new(std::size_t) in a library.
constexpr const char* kOperatorNew = sizeof(std::size_t) == sizeof(unsigned long) &&
                                             sizeof(unsigned long) > sizeof(unsigned int)
                                         ? "_Znwm"
                                         : "_Znwj";

}  // namespace

void* operator new(std::size_t size) {
  if (failing_calls::Fails(failing_calls::kNew)) throw std::length_error("planned");
  static auto* const next = failing_calls::Next<void*(std::size_t)>(kOperatorNew);
  return next(size);
}
