// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/run.h"

int main(int argc, char** argv) { return ostrafel::RunOstrafel(argc, argv); }
