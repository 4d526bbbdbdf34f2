// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/commands.h"

int main(int argc, char** argv) { return qvx::ctl::RunProgram(argc, argv); }
