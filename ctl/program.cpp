// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include "ctl/commands.h"

namespace qvx::ctl {
namespace {

constexpr u32 kMostNumber = 0xFFFFFFFF;  // of every option that takes a number
constexpr char kFooter[] =
    "Exit status: 0 yes or done; 1 no, refused, or a fault or warning was found;\n"
    "2 the command line is wrong; 3 it could not be found out, or a file is missing.\n"
    "Options come after the subcommand. See qvxctl(8).";

void AddCommands(CLI::App& program, ExitCode& code) {
  program.require_subcommand(1);
  program.set_version_flag("--version", Version());
  program.footer(kFooter);
  AddRolemapCommand(program, code);
  AddRightsCommand(program, code);
  AddLoginCommand(program, code);
  AddLogCommand(program, code);
  AddIniCommand(program, code);
  AddConfCommand(program, code);
  AddLockCommand(program, code);
  AddStatusCommand(program, code);
  AddDoctorCommand(program, code);
}

Failure UsageFailure(const std::string& message) {
  return {kUsage, message + " (see qvxctl --help)"};
}

// Help or the version, which the parser throws.
ExitCode Answer(const CLI::App& program, const CLI::ParseError& error) {
  std::ostringstream text;
  (void)program.exit(error, text, text);
  Print(text.str());
  FlushOutput();
  return kYes;
}

// What the words that were not taken say about the one that is missing.
std::string HintOfMissing(const CLI::App& program, const std::string& message) {
  const std::vector<std::string> left = program.remaining(true);
  if (left.empty()) return "";
  const bool lacksCommand = message == CLI::RequiredError::Subcommand(1).what();
  if (lacksCommand) return ", \"" + left.front() + "\" is none";
  if (left.front().rfind('-', 0) != 0) return "";
  return ": an argument that begins with \"-\" comes after \"--\", behind the options";
}

ExitCode Run(int argc, char** argv) {
  ExitCode code = kYes;
  CLI::App program("Checks and mends what libqvxcs keeps on this machine.", "qvxctl");
  AddCommands(program, code);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ConversionError& error) {
    throw UsageFailure(error.what() +
                       (": a whole number from 0 to " + std::to_string(kMostNumber)));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return Answer(program, error);
    if (argc > 2 && argv[1][0] == '-') {
      throw UsageFailure(error.what() + std::string(": options come after the subcommand"));
    }
    const bool isMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    throw UsageFailure(error.what() + (isMissing ? HintOfMissing(program, error.what()) : ""));
  }
  FlushOutput();
  return code;
}

ExitCode Report(ExitCode code, const char* message) {
  (void)fflush(stdout);
  if (*message != '\0') (void)fprintf(stderr, "qvxctl: %s\n", OneLine(message).c_str());
  return code;
}

}  // namespace

int RunProgram(int argc, char** argv) {
  // The write that fails shows that the reader is gone.
  (void)signal(SIGPIPE, SIG_IGN);
  ChooseLocale();
  try {
    return Run(argc, argv);
  } catch (const Failure& failure) {
    return Report(failure.Code(), failure.what());
  } catch (const std::exception& error) {
    return Report(kUnknown, error.what());
  }
}

}  // namespace qvx::ctl
