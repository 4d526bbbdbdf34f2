// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>

#include "ctl/status_table.h"

namespace qvx::ctl {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";
constexpr wchar_t kDirectionMarks[] =
    L"\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067"
    L"\u2068\u2069";

bool IsShown(wchar_t character) {
  return iswprint(static_cast<wint_t>(character)) != 0 &&
         wcschr(kDirectionMarks, character) == nullptr;
}

// The length of the character at the front of the text, 0 where there is none; `character` is it.
size_t DecodeFront(std::string_view text, wchar_t* character) {
  std::mbstate_t state{};
  const size_t length = std::mbrtowc(character, text.data(), text.size(), &state);
  return length > text.size() ? 0 : length;
}

void AppendEscaped(std::string& line, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  line += "\\x";
  line += kHexDigits[value >> 4];
  line += kHexDigits[value & 0xF];
}

// The terminal's columns, 0 where stdout is none.
size_t TerminalWidth() {
  winsize size{};
  if (isatty(STDOUT_FILENO) == 0) return 0;
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool ShowsColors() {
  const char* const terminal = getenv("TERM");
  const char* const refused = getenv("NO_COLOR");
  const bool plain = terminal == nullptr || strcmp(terminal, "dumb") == 0;
  return !plain && (refused == nullptr || *refused == '\0') && isatty(STDOUT_FILENO) != 0;
}

const char* CodeOf(Color color) {
  constexpr std::array<const char*, 5> kCodes = {"", "\033[31m", "\033[33m", "\033[32m", "\033[1m"};
  return kCodes.at(static_cast<size_t>(color));
}

std::string TextOfReason(int reason) {
  return reason == kNoRegularFile ? "no regular file" : strerror(reason);
}

[[noreturn]] void FailOutput(int reason) {
  if (reason == EPIPE) throw Failure(kUnknown, "");
  throw SystemFailure("stdout", reason);
}

}  // namespace

Failure StatusFailure(const std::string& what, u32 status, int reason) {
  const StatusEntry& entry = EntryOfStatus(status);
  std::string message = what + ": " + entry.name + ": " + entry.meaning;
  if (reason != 0) message += " (" + TextOfReason(reason) + ")";
  const ExitCode code = reason == ENOENT ? kUnknown : entry.exitCode;
  return {code, message};
}

Failure SystemFailure(const std::string& what, int reason) {
  return {kUnknown, what + ": " + TextOfReason(reason), reason};
}

void Print(std::string_view text) {
  if (fwrite(text.data(), 1, text.size(), stdout) != text.size()) FailOutput(errno);
}

void PrintLine(std::string_view line) { Print(OneLine(line) + "\n"); }

void PrintRow(std::string_view row) {
  const size_t columns = TerminalWidth();
  const std::string safe = OneLine(row);
  Print((columns == 0 ? safe : CutToWidth(safe, columns)) + "\n");
}

void PrintValue(const std::string& value) {
  Print((isatty(STDOUT_FILENO) != 0 ? OneLine(value) : value) + "\n");
}

void FlushOutput() {
  if (fflush(stdout) != 0) FailOutput(errno);
}

void Warn(const std::string& message) {
  (void)fflush(stdout);
  (void)fprintf(stderr, "qvxctl: warning: %s\n", OneLine(message).c_str());
}

void PrintMarked(Color color, std::string_view word, std::string_view rest) {
  const std::string marked = OneLine(word);
  const std::string plain = OneLine(rest);
  if (color == Color::kNone || !ShowsColors()) return Print(marked + plain + "\n");
  Print(CodeOf(color) + marked + "\033[0m" + plain + "\n");
}

std::string OneLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    wchar_t character = 0;
    const size_t length = DecodeFront(text, &character);
    const size_t taken = std::max<size_t>(length, 1);
    if (length != 0 && IsShown(character)) {
      line += text.substr(0, taken);
    } else {
      for (const char byte : text.substr(0, taken)) {
        AppendEscaped(line, byte);
      }
    }
    text.remove_prefix(taken);
  }
  return line;
}

std::string CutToWidth(const std::string& line, size_t columns) {
  std::string_view rest = line;
  size_t used = 0;
  while (!rest.empty()) {
    wchar_t character = 0;
    const size_t length = std::max<size_t>(DecodeFront(rest, &character), 1);
    const int width = std::max(wcwidth(character), 0);
    if (used + static_cast<size_t>(width) > columns) break;
    used += static_cast<size_t>(width);
    rest.remove_prefix(length);
  }
  return line.substr(0, line.size() - rest.size());
}

void ChooseLocale() {
  (void)setlocale(LC_CTYPE, "");
  if (MB_CUR_MAX == 1) (void)setlocale(LC_CTYPE, "C.UTF-8");
}

}  // namespace qvx::ctl
