// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_COMMANDS_H
#define QVX_CTL_COMMANDS_H

#include "ctl/output.h"

namespace CLI {
class App;
}

// Each adds its commands to the program. A command that runs stores its exit code.
namespace qvx::ctl {

void AddRolemapCommand(CLI::App& program, ExitCode& code);
void AddRightsCommand(CLI::App& program, ExitCode& code);
void AddLoginCommand(CLI::App& program, ExitCode& code);
void AddLogCommand(CLI::App& program, ExitCode& code);
void AddIniCommand(CLI::App& program, ExitCode& code);
void AddConfCommand(CLI::App& program, ExitCode& code);
void AddLockCommand(CLI::App& program, ExitCode& code);
void AddStatusCommand(CLI::App& program, ExitCode& code);
void AddDoctorCommand(CLI::App& program, ExitCode& code);

const char* Version();

// The whole program; its exit code.
int RunProgram(int argc, char** argv);

}  // namespace qvx::ctl

#endif
