// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/run.h"

int main(int argc, char** argv) { return ostrafel::RunExport(argc, argv); }
