#ifndef OSTRAFEL_DRIVER_USAGE_H_
#define OSTRAFEL_DRIVER_USAGE_H_

/// Prints the usage text on standard error.
void PrintUsage();

#endif  // OSTRAFEL_DRIVER_USAGE_H_
