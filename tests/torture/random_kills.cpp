// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Four processes write one log and one INI file without a pause; one after the other is killed at
// any moment, and another takes its place. No call fails, what was reported is there, and of what
// was not there is all or nothing.
#include <sys/mman.h>
#include <sys/wait.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>

#include "torture/log_text.h"
#include "torture/loop_disk.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kImage[] = "/run/torture.img";
constexpr char kLog[] = "/tmp/torture/killed.xml";
constexpr char kIni[] = "/tmp/torture/killed.ini";
constexpr qvx_u32 kRoomy = 0x7FFFFFFF;
constexpr unsigned kWriters = 4;
constexpr unsigned kKills = 16;  // until the files are judged
constexpr unsigned kLives = kWriters + kKills;
constexpr unsigned kLongestPause = 1500;  // microseconds
constexpr unsigned kNoCalls = 0x10000;    // of a life: more than it makes
// Of a life that is killed late: what all of them write fits the disk.
constexpr unsigned kMostCalls = 100;

// What the writers have been told; shared with them.
struct Reports {
  std::array<std::atomic<unsigned>, kLives> entries{};
  std::array<std::atomic<unsigned>, kWriters> values{};
  std::atomic<unsigned> badStatus{0};
};

// 200 bytes to 32 KiB with the rest of the entry, most of them short.
std::string TextOf(unsigned life, unsigned nth) {
  const std::string name = "l" + std::to_string(life) + "-" + std::to_string(nth) + ";";
  const unsigned kind = (life * 7 + nth) % 16;
  const size_t length = kind == 0 ? 16000 : kind < 3 ? 4000 : nth * 37 % 600;
  return name + std::string(length, static_cast<char>('a' + nth % 26));
}
// A dump of 16 bytes is a line of 82.
unsigned DataOf(unsigned nth) { return nth % 16 == 5 ? 3000 : 0; }

// Values of a writer's key only grow, over all its lives.
unsigned ValueOf(unsigned life, unsigned nth) { return life * kNoCalls + nth; }

[[noreturn]] void Live(unsigned life, unsigned writer, Reports* reports) {
  static const char data[3000] = {};
  const std::string key = "w" + std::to_string(writer);
  for (unsigned nth = 1; nth <= kMostCalls; ++nth) {
    qvx_u32 status = PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7001, "root", "TORTURE",
                                       TextOf(life, nth).c_str(), data, DataOf(nth), kRoomy);
    if (status == SM_STATUS_SUCCESS) reports->entries[life] = nth;
    if (nth % 3 == 0 && status == SM_STATUS_SUCCESS) {
      const std::string value = std::to_string(ValueOf(life, nth));
      status =
          PXTWriteINIPathFileValue("s", key.c_str(), QVX_INI_ASTRING, value.c_str(),
                                   static_cast<qvx_s32>(value.size() + 1), kIni, QVX_LOCK_WAIT);
      if (status == SM_STATUS_SUCCESS) reports->values[writer] = ValueOf(life, nth);
    }
    if (status != SM_STATUS_SUCCESS) {
      reports->badStatus = status;
      _exit(1);
    }
  }
  for (;;) {
    (void)pause();
  }
}

pid_t Start(unsigned life, unsigned writer, Reports* reports) {
  (void)fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) abort();
  if (child == 0) Live(life, writer, reports);
  return child;
}

void Kill(pid_t child) {
  (void)kill(child, SIGKILL);
  (void)waitpid(child, nullptr, 0);
}

// Each life's reported entries whole and in order, and at most one more; nothing else.
std::string JudgeLog(const Reports& reports) {
  const std::string log = ReadText(kLog);
  if (!WellFormed(log)) return "the log is not well-formed";
  unsigned entries = 1;  // that of the judge
  for (unsigned life = 0; life < kLives; ++life) {
    size_t from = 0;
    for (unsigned nth = 1;; ++nth) {
      const std::string text = "<Description>" + TextOf(life, nth) + "</Description>";
      const size_t found = log.find(text, from);
      if (found == std::string::npos) {
        if (nth > reports.entries[life]) break;
        return "a reported entry is lost: " + std::to_string(life) + ", " + std::to_string(nth);
      }
      if (nth > reports.entries[life] + 1) return "an entry that nobody wrote";
      from = found + text.size();
      ++entries;
    }
  }
  return EntryCount(log) == entries ? "" : "the log holds more than whole entries";
}

// Each key's last reported value or a later one; nothing else.
std::string JudgeIni(const Reports& reports) {
  const std::string ini = ReadText(kIni);
  size_t size = strlen("[s]\nfixed=value\n");
  for (unsigned writer = 0; writer < kWriters; ++writer) {
    const std::string begin = "\nw" + std::to_string(writer) + "=";
    const size_t at = ini.find(begin);
    const unsigned reported = reports.values[writer];
    if (at == std::string::npos) {
      if (reported != 0) return "a reported value is lost";
      continue;
    }
    const size_t end = ini.find('\n', at + 1);
    if (end == std::string::npos) return "a line is cut";
    const std::string value = ini.substr(at + begin.size(), end - at - begin.size());
    if (std::to_string(strtoul(value.c_str(), nullptr, 10)) != value) return "no value: " + value;
    if (strtoul(value.c_str(), nullptr, 10) < reported) return "an older value is back";
    size += end - at;
  }
  if (ini.compare(0, 16, "[s]\nfixed=value\n") != 0) return "the file's beginning is gone";
  return size == ini.size() ? "" : "the file holds more than its keys";
}

std::string Judge(const Reports& reports) {
  if (reports.badStatus != 0) return "a call fails: " + std::to_string(reports.badStatus);
  const std::string wrong = InChild([]() -> std::string {
    const qvx_u32 status = PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 7001, "root", "TORTURE",
                                             "judge", nullptr, 0, kRoomy);
    return status == SM_STATUS_SUCCESS ? "" : "the log refuses the next entry";
  });
  if (!wrong.empty()) return wrong;
  if (const std::string bad = JudgeLog(reports); !bad.empty()) return bad;
  return JudgeIni(reports);
}

// Adds the entries that were reported to `written`.
std::string Round(std::mt19937* random, unsigned long* written) {
  MakePlace();
  WriteText(kIni, "[s]\nfixed=value\n");
  void* const shared =
      mmap(nullptr, sizeof(Reports), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) abort();
  auto* const reports = new (shared) Reports;
  std::array<pid_t, kWriters> writers{};
  unsigned life = 0;
  for (unsigned at = 0; at < kWriters; ++at) {
    writers[at] = Start(life++, at, reports);
  }
  while (life < kLives) {
    usleep(static_cast<unsigned>((*random)() % kLongestPause));
    const unsigned at = (*random)() % kWriters;
    Kill(writers[at]);
    writers[at] = Start(life++, at, reports);
  }
  for (const pid_t writer : writers) {
    Kill(writer);
  }
  for (const std::atomic<unsigned>& entries : reports->entries)
    *written += entries;
  const std::string wrong = Judge(*reports);
  (void)munmap(shared, sizeof(Reports));
  return wrong;
}

void Rounds(unsigned kills, const char* disk, std::mt19937* random, Tally* tally) {
  unsigned long written = 0;
  for (unsigned done = 0; done < kills; done += kLives) {
    tally->Add(Round(random, &written), disk);
    tally->points += kLives - 1;
  }
  if (written == 0) tally->Add("nobody writes an entry", disk);
}

}  // namespace

Tally RandomKills(Depth depth) {
  Tally tally{"kills of busy processes at any moment"};
  const unsigned kills = depth == Depth::kGoal ? 10000 : depth == Depth::kFloor ? 1000 : 100;
  std::mt19937 random(20);
  Rounds(kills, "tmpfs", &random, &tally);
  // Only a sample may do without: the machine's lack of it must not pass for a good run.
  bool tried = false;
  if (MakeImage(kImage)) {
    if (const LoopDisk disk(kImage, kPlace, ""); disk) {
      Rounds(kills, "ext4", &random, &tally);
      tried = true;
    }
  }
  if (!tried && depth != Depth::kSample) tally.Add("needs mkfs.ext4 and loop devices", "ext4");
  (void)unlink(kImage);
  return tally;
}

}  // namespace qvx::torture
