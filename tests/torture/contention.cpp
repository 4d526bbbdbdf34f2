// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Many processes, with and without threads, on one log and on one INI file: nothing is lost, each
// keeps its order, no call runs out of time.
#include <sys/wait.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kLog[] = "/tmp/torture/shared.xml";
constexpr char kBackup[] = "/tmp/torture/shared.xm_";
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

bool Write(unsigned writer, unsigned count, qvx_u32 maxSize) {
  for (unsigned at = 0; at < count; ++at) {
    const std::string text = "w" + std::to_string(writer) + "-" + std::to_string(at) + ";";
    if (PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7001, "root", "TORTURE", text.c_str(), nullptr,
                          0, maxSize) != SM_STATUS_SUCCESS) {
      return false;
    }
  }
  return true;
}

// `log`: all entries, in their order.
std::string LogIsWhole(const std::string& log, unsigned writers, unsigned each) {
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
    if (PXTWriteINIPathFileValue("s", key.c_str(), QVX_INI_ASTRING, text.c_str(),
                                 static_cast<qvx_s32>(text.size() + 1), kIni, QVX_LOCK_WAIT) != 0) {
      return false;
    }
    char back[16];
    qvx_u32 size = sizeof(back);
    if (PXTReadINIPathFileValue("s", key.c_str(), QVX_INI_ASTRING, back, &size, nullptr, 0, kIni,
                                QVX_LOCK_WAIT) != 0 ||
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
    if (PXTReadINIPathFileValue("s", "fixed", QVX_INI_ASTRING, text, &size, nullptr, 0, kIni,
                                QVX_LOCK_WAIT) != 0 ||
        strcmp(text, "value") != 0) {
      return false;
    }
  }
  return true;
}

// 32 processes on one log that is never moved.
void OneLog(unsigned each, Tally* tally) {
  constexpr unsigned kWriters = 32;
  const unsigned failed =
      InProcesses(kWriters, [each](unsigned at) { return Write(at, each, kRoomy); });
  tally->Add(failed != 0 ? "a call fails" : LogIsWhole(ReadText(kLog), kWriters, each),
             "32 processes on one log");
  tally->points += static_cast<unsigned long>(kWriters) * each - 1;
}

// The log grows to a little more than its maximum, and is moved once: all is in one of the two.
void OverAMove(unsigned each, Tally* tally) {
  constexpr unsigned kWriters = 16;
  constexpr unsigned kEntrySize = 280;
  (void)unlink(kLog);
  (void)unlink(kBackup);
  const qvx_u32 maxSize = kWriters * each * kEntrySize * 2 / 3;
  const unsigned failed =
      InProcesses(kWriters, [each, maxSize](unsigned at) { return Write(at, each, maxSize); });
  std::string wrong = LogIsWhole(ReadText(kBackup) + ReadText(kLog), kWriters, each);
  if (ReadText(kBackup) == kNone) wrong = "the log was not moved";
  tally->Add(failed != 0 ? "a call fails" : wrong, "16 processes over a move to the backup");
  tally->points += static_cast<unsigned long>(kWriters) * each - 1;
}

void OneIniFile(int seconds, Tally* tally) {
  WriteText(kIni, "[s]\nfixed=value\n");
  const time_t until = time(nullptr) + seconds;
  const unsigned failed = InProcesses(
      16, [until](unsigned at) { return at < 8 ? Change(at, until) : ReadAlong(until); });
  tally->Add(failed == 0 ? "" : std::to_string(failed) + " processes see a wrong value",
             "8 writers and 8 readers of one INI file");
}

// Threads of one process: half of them write the log, a quarter each writes and reads the file.
bool RunThreads(unsigned process, time_t until) {
  constexpr unsigned kThreads = 8;
  std::atomic<unsigned> failed = 0;
  std::vector<std::thread> threads;
  for (unsigned at = 0; at < kThreads; ++at) {
    threads.emplace_back([&failed, process, until, at] {
      const unsigned number = process * kThreads + at;
      bool right = true;
      while (at < 4 && right && time(nullptr) < until) {
        right = Write(number, 1, kRoomy);
      }
      if (at == 4 || at == 5) right = Change(number, until);
      if (at > 5) right = ReadAlong(until);
      if (!right) ++failed;
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  return failed == 0;
}

void ProcessesOfThreads(int seconds, Tally* tally) {
  (void)unlink(kLog);
  WriteText(kIni, "[s]\nfixed=value\n");
  const time_t until = time(nullptr) + seconds;
  const unsigned failed =
      InProcesses(4, [until](unsigned process) { return RunThreads(process, until); });
  tally->Add(failed == 0 ? "" : "a call fails, or runs out of time",
             "4 processes of 8 threads without a pause");
}

}  // namespace

Tally Contention(Depth depth) {
  Tally tally{"contention of processes and threads"};
  OneLog(depth == Depth::kGoal ? 5000 : depth == Depth::kFloor ? 2000 : 100, &tally);
  OverAMove(depth == Depth::kSample ? 50 : 500, &tally);
  OneIniFile(depth == Depth::kGoal ? 60 : depth == Depth::kFloor ? 10 : 2, &tally);
  ProcessesOfThreads(depth == Depth::kGoal ? 60 : depth == Depth::kFloor ? 10 : 2, &tally);
  return tally;
}

}  // namespace qvx::torture
