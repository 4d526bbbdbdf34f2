// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_OUTPUT_H
#define QVX_CTL_OUTPUT_H

#include <stdexcept>
#include <string>
#include <string_view>

#include "qvxcs/types.h"

#include "ctl/exit_code.h"

// What a command shows and how it ends. Answers go to stdout, faults to stderr.
namespace qvx::ctl {

// Ends the command; with an empty message, in silence.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message, int reason = 0)
      : std::runtime_error(message), code_(code), reason_(reason) {}
  [[nodiscard]] ExitCode Code() const { return code_; }
  // The errno of a failed system call; 0 for another failure.
  [[nodiscard]] int Reason() const { return reason_; }

 private:
  ExitCode code_;
  int reason_;
};

// In the place of an errno: the path leads to a FIFO, a socket or a device.
inline constexpr int kNoRegularFile = -1;

// A failed call: "WHAT: SM_STATUS_...: meaning (the system's reason)". `reason` is an errno, 0 for
// none.
Failure StatusFailure(const std::string& what, u32 status, int reason = 0);

// A failed system call: "WHAT: reason".
Failure SystemFailure(const std::string& what, int reason);

// Prints text to stdout as it is. When the reader of stdout is gone, the command ends in silence; a
// full disk ends it with the reason.
void Print(std::string_view text);

// One line to stdout, made safe to show.
void PrintLine(std::string_view line);

// PrintLine, but a terminal's line is cut at its width: for one row of a long list.
void PrintRow(std::string_view row);

// A value for programs, and its line end: as it is, but safe to show on a terminal.
void PrintValue(const std::string& value);

// Flushes what was printed.
void FlushOutput();

// A warning on stderr that does not end the command.
void Warn(const std::string& message);

enum class Color { kNone, kRed, kYellow, kGreen, kBold };

// PrintLine with its first words in a color, on a terminal that has colors.
void PrintMarked(Color color, std::string_view word, std::string_view rest);

// The text on one line: control characters, bytes that are no text and marks that turn the
// direction of writing become \xNN.
std::string OneLine(std::string_view text);

// As many whole characters of a line as fit the columns.
std::string CutToWidth(const std::string& line, size_t columns);

// Chooses the locale that text is shown and read in: the user's own, else UTF-8.
void ChooseLocale();

}  // namespace qvx::ctl

#endif
