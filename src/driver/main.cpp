#include "driver/run.h"

int main(int argc, char** argv) { return RunOstrafel(argc, argv); }
