#include "driver/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

void OccupyStandardDescriptors() {
  // open(2) returns the lowest number that is free.
  int descriptor = open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
  if (descriptor > STDERR_FILENO) (void)close(descriptor);
}
