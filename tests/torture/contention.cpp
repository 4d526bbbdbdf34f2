// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Many processes on one log and on one INI file: nothing is lost, each keeps its order.
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <ctime>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kLog[] = "/tmp/torture/shared.xml";
constexpr char kIni[] = "/tmp/torture/shared.ini";
constexpr qvx_u32 kRoomy = 0x7FFFFFFF;

// Runs `body(0)` to `body(count - 1)` in processes; returns how many did not exit with 0.
template <typename Body>
unsigned InProcesses(unsigned count, Body body) {
  (void)fflush(nullptr);
  for (unsigned at = 0; at < count; ++at) {
    if (fork() == 0) _exit(body(at) ? 0 : 1);
  }
  unsigned failed = 0;
  int status = 0;
  while (wait(&status) > 0)
    failed += status == 0 ? 0 : 1;
  return failed;
}

bool Write(unsigned writer, unsigned count) {
  for (unsigned at = 0; at < count; ++at) {
    const std::string text = "w" + std::to_string(writer) + "-" + std::to_string(at) + ";";
    if (PXTAppendToXMLLog(kLog, 4, 7001, "root", "TORTURE", text.c_str(), nullptr, 0, kRoomy) !=
        SM_STATUS_SUCCESS) {
      return false;
    }
  }
  return true;
}

std::string LogIsWhole(unsigned writers, unsigned each) {
  const std::string log = ReadText(kLog);
  for (unsigned writer = 0; writer < writers; ++writer) {
    size_t from = 0;
    for (unsigned at = 0; at < each; ++at) {
      const std::string text = ">w" + std::to_string(writer) + "-" + std::to_string(at) + ";";
      const size_t found = log.find(text, from);
      if (found == std::string::npos) return "lost or out of order: " + text;
      from = found + text.size();
    }
  }
  return "";
}

bool Change(unsigned writer, time_t until) {
  const std::string key = "k" + std::to_string(writer);
  unsigned last = 0;
  while (time(nullptr) < until) {
    const std::string text = std::to_string(++last);
    if (PXTWriteINIPathFileValue("s", key.c_str(), 1, text.c_str(),
                                 static_cast<qvx_s32>(text.size() + 1), kIni, 1) != 0) {
      return false;
    }
    char back[16];
    qvx_u32 size = sizeof(back);
    if (PXTReadINIPathFileValue("s", key.c_str(), 1, back, &size, nullptr, 0, kIni, 1) != 0 ||
        text != back) {
      return false;
    }
  }
  return true;
}

bool ReadAlong(time_t until) {
  while (time(nullptr) < until) {
    char text[16];
    qvx_u32 size = sizeof(text);
    if (PXTReadINIPathFileValue("s", "fixed", 1, text, &size, nullptr, 0, kIni, 1) != 0 ||
        strcmp(text, "value") != 0) {
      return false;
    }
  }
  return true;
}

}  // namespace

Tally Contention(bool goal) {
  Tally tally{"contention of processes"};
  constexpr unsigned kWriters = 32;
  const unsigned each = goal ? 5000 : 2000;
  unsigned failed = InProcesses(kWriters, [each](unsigned at) { return Write(at, each); });
  std::string wrong = failed == 0 ? LogIsWhole(kWriters, each) : "a call fails";
  tally.Add(wrong, "32 processes on one log");
  tally.points += static_cast<unsigned long>(kWriters) * each - 1;

  WriteText(kIni, "[s]\nfixed=value\n");
  const time_t until = time(nullptr) + (goal ? 60 : 10);
  failed = InProcesses(
      16, [until](unsigned at) { return at < 8 ? Change(at, until) : ReadAlong(until); });
  tally.Add(failed == 0 ? "" : std::to_string(failed) + " processes see a wrong value",
            "8 writers and 8 readers of one INI file");
  return tally;
}

}  // namespace qvx::torture
