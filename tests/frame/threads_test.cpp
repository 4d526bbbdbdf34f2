// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Threads of one process, and of several, that work on the same files at once: nothing is lost,
// each thread's order is kept, no call fails and no temporary file stays.
#include "support/threads.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/alone.h"
#include "support/files.h"
#include "support/processes.h"
#include "support/sanitizers.h"

namespace {

using qvx::test::InThreads;
using qvx::test::ReadFile;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char kFolder[] = "/run/threads";
constexpr u32 kNoMaximum = 0xFFFFFFFF;
constexpr s32 kU32 = 5;

std::string InFolder(const std::string& name) { return std::string(kFolder) + "/" + name; }

std::set<std::string> NamesInFolder() {
  std::set<std::string> names;
  DIR* const folder = opendir(kFolder);
  while (const dirent* const entry = readdir(folder)) {
    if (entry->d_name[0] != '.' || entry->d_name[1] != '\0') names.insert(entry->d_name);
  }
  (void)closedir(folder);
  names.erase("..");
  return names;
}

void Start() {
  ASSERT_EQ(mkdir(kFolder, 0755), 0);
  ASSERT_EQ(qvx::ModuleInit(), 1);
}

// An entry's identifier is its thread times this and its number.
constexpr u32 kEntries = 100000;

u32 Append(const std::string& log, u32 thread, u32 number, u32 maximum = kNoMaximum) {
  return PXTAppendToXMLLog(log.c_str(), QVX_LOG_INFORMATION, thread * kEntries + number, "u", "s",
                           "<D/>", nullptr, 0, maximum);
}

// How many of its entries, in order and from 0 on, each thread has in the text; `count` threads.
std::vector<u32> EntriesInOrder(const std::string& text, u32 count) {
  std::vector<u32> next(count, 0);
  constexpr char kMark[] = "<ID>";
  for (size_t at = text.find(kMark); at != std::string::npos; at = text.find(kMark, at + 1)) {
    const u32 identifier = static_cast<u32>(strtoul(text.c_str() + at + 4, nullptr, 10));
    const u32 thread = identifier / kEntries;
    if (thread < count && identifier % kEntries == next[thread]) ++next[thread];
  }
  return next;
}

QVX_ALONE(Threads, SixteenThreadsLoseNoEntryOfOneLog) {
  Start();
  std::atomic<u32> faults = 0;
  InThreads(16, [&faults](u32 thread) {
    for (u32 number = 0; number < 2000; ++number) {
      faults += Append(InFolder("one.xml"), thread, number) == SM_STATUS_SUCCESS ? 0 : 1;
    }
  });
  EXPECT_EQ(faults, 0U);
  EXPECT_EQ(EntriesInOrder(ReadFile(InFolder("one.xml")), 16), std::vector<u32>(16, 2000));
  EXPECT_EQ(NamesInFolder(), std::set<std::string>{"one.xml"});
}

QVX_ALONE(Threads, SixteenThreadsLoseNoEntryOfSixteenLogs) {
  Start();
  std::atomic<u32> faults = 0;
  InThreads(16, [&faults](u32 thread) {
    const std::string log = InFolder("log" + std::to_string(thread) + ".xml");
    for (u32 number = 0; number < 2000; ++number) {
      faults += Append(log, 0, number) == SM_STATUS_SUCCESS ? 0 : 1;
    }
  });
  EXPECT_EQ(faults, 0U);
  for (u32 thread = 0; thread < 16; ++thread) {
    const std::string text = ReadFile(InFolder("log" + std::to_string(thread) + ".xml"));
    EXPECT_EQ(EntriesInOrder(text, 1), std::vector<u32>{2000});
  }
}

// Log and backup together have room for all entries, so that the log is moved once.
QVX_ALONE(Threads, SixteenThreadsLoseNoEntryWhenTheLogMovesToItsBackup) {
  Start();
  ASSERT_EQ(Append(InFolder("probe.xml"), 0, 0), SM_STATUS_SUCCESS);
  const size_t first = ReadFile(InFolder("probe.xml")).size();
  ASSERT_EQ(Append(InFolder("probe.xml"), 15, 499), SM_STATUS_SUCCESS);
  const size_t entry = ReadFile(InFolder("probe.xml")).size() - first;
  const u32 maximum = static_cast<u32>(entry * 16 * 500 * 2 / 3);
  std::atomic<u32> faults = 0;
  InThreads(16, [&faults, maximum](u32 thread) {
    for (u32 number = 0; number < 500; ++number) {
      faults += Append(InFolder("moved.xml"), thread, number, maximum) == SM_STATUS_SUCCESS ? 0 : 1;
    }
  });
  EXPECT_EQ(faults, 0U);
  const std::string backup = ReadFile(InFolder("moved.xm_"));
  EXPECT_GE(backup.size(), maximum - 2 * entry);
  EXPECT_EQ(EntriesInOrder(backup + ReadFile(InFolder("moved.xml")), 16),
            std::vector<u32>(16, 500));
}

u32 WriteNumber(const std::string& path, const std::string& section, const std::string& key,
                u32 number) {
  return PXTWriteINIPathFileValue(section.c_str(), key.c_str(), kU32, &number, sizeof(number),
                                  path.c_str(), QVX_LOCK_WAIT);
}

u32 ReadNumber(const std::string& path, const std::string& section, const std::string& key,
               u32* number) {
  u32 size = sizeof(*number);
  return PXTReadINIPathFileValue(section.c_str(), key.c_str(), kU32, number, &size, nullptr, 0,
                                 path.c_str(), QVX_LOCK_WAIT);
}

// Eight threads write a number each, over and over, and eight read what the others write: no value
// goes back, and in the end each key holds its last number.
void EightWriteAndEightRead(const std::string& path, const std::vector<std::string>& sections) {
  const auto sectionOf = [&sections](u32 thread) { return sections[thread % sections.size()]; };
  const auto keyOf = [](u32 thread) { return "key" + std::to_string(thread); };
  for (u32 thread = 0; thread < 8; ++thread) {
    ASSERT_EQ(WriteNumber(path, sectionOf(thread), keyOf(thread), 0), SM_STATUS_SUCCESS);
  }
  std::array<u32, 8> last = {};
  std::atomic<u32> faults = 0;
  const auto end = steady_clock::now() + milliseconds(700);
  InThreads(16, [&](u32 at) {
    const u32 thread = at % 8;
    u32 seen = 0;
    do {
      u32 number = 0;
      const bool writes = at < 8;
      const u32 status = writes ? WriteNumber(path, sectionOf(thread), keyOf(thread), ++last[at])
                                : ReadNumber(path, sectionOf(thread), keyOf(thread), &number);
      faults += status != SM_STATUS_SUCCESS || (!writes && number < seen) ? 1 : 0;
      seen = number;
    } while (steady_clock::now() < end);
  });
  EXPECT_EQ(faults, 0U);
  for (u32 thread = 0; thread < 8; ++thread) {
    u32 number = 0;
    EXPECT_EQ(ReadNumber(path, sectionOf(thread), keyOf(thread), &number), SM_STATUS_SUCCESS);
    EXPECT_EQ(number, last[thread]);
    EXPECT_GE(number, 1U);
  }
  EXPECT_EQ(NamesInFolder().size(), 1U) << "a temporary file stays";
}

QVX_ALONE(Threads, WritersAndReadersOfOneINISectionMeetNoHalfFile) {
  Start();
  EightWriteAndEightRead(InFolder("one.ini"), {"A"});
}

QVX_ALONE(Threads, WritersAndReadersOfSeveralINISectionsMeetNoHalfFile) {
  Start();
  EightWriteAndEightRead(InFolder("several.ini"), {"A", "B", "C", "D", "E"});
}

u32 SetNumber(const std::string& path, std::string key, u32 number) {
  std::string value = std::to_string(number);
  const PXTKeyValue pair = {key.data(), value.data()};
  return PXTCFGSetKeyValue(path.c_str(), &pair, 0);
}

QVX_ALONE(Threads, WritersAndReadersOfOneKeyValueFileMeetNoHalfFile) {
  Start();
  const std::string path = InFolder("one.properties");
  qvx::test::WriteFile(path, "k0=0\nk1=0\nk2=0\nk3=0\nk4=0\nk5=0\nk6=0\nk7=0\n");
  std::array<u32, 8> last = {};
  std::atomic<u32> faults = 0;
  const auto end = steady_clock::now() + milliseconds(700);
  InThreads(16, [&](u32 at) {
    while (steady_clock::now() < end) {
      if (at < 8) {
        faults += SetNumber(path, "k" + std::to_string(at), ++last[at]) == 0 ? 0 : 1;
        continue;
      }
      u32 count = 0;
      PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(path.c_str(), &count);
      faults += entries != nullptr && count == 8 ? 0 : 1;
      PXTCFGFreeKeyValueEntries(entries, count);
    }
  });
  EXPECT_EQ(faults, 0U);
  std::string expected;
  for (u32 at = 0; at < 8; ++at) {
    expected += "k" + std::to_string(at) + "=" + std::to_string(last[at]) + "\n";
  }
  EXPECT_EQ(ReadFile(path), expected);
  EXPECT_EQ(NamesInFolder(), std::set<std::string>{"one.properties"});
}

// One thread's share of the work of four processes: a log, an INI file and a key=value file that
// all of them use. The number of rounds; -1 after a status other than 0.
int WorkUntil(steady_clock::time_point end, u32 worker) {
  const std::string name = std::to_string(worker);
  int round = 0;
  do {
    const u32 number = static_cast<u32>(round);
    if (Append(InFolder("all.xml"), worker, number) != SM_STATUS_SUCCESS) return -1;
    if (WriteNumber(InFolder("all.ini"), "S" + std::to_string(worker % 4), "k" + name, number)) {
      return -1;
    }
    if (SetNumber(InFolder("all.properties"), "k" + name, number) != SM_STATUS_SUCCESS) return -1;
    ++round;
  } while (steady_clock::now() < end);
  return round;
}

// Eight threads of one of the processes; what each of them did is written to its own file.
int WorkInThreads(u32 process, steady_clock::time_point end) {
  std::atomic<int> faults = 0;
  InThreads(8, [&faults, process, end](u32 thread) {
    const u32 worker = process * 8 + thread;
    const int rounds = WorkUntil(end, worker);
    faults += rounds > 0 ? 0 : 1;  // a slow machine does one round at least
    qvx::test::WriteFile("/run/rounds" + std::to_string(worker), std::to_string(rounds));
  });
  return faults == 0 ? 0 : 1;
}

QVX_ALONE(Threads, FourProcessesOfEightThreadsLoseNothingAndNoCallFails) {
  Start();
  std::string properties;
  for (u32 worker = 0; worker < 32; ++worker) {
    properties += "k" + std::to_string(worker) + "=none\n";
  }
  qvx::test::WriteFile(InFolder("all.properties"), properties);
  const auto end = steady_clock::now() + milliseconds(3000);
  std::vector<pid_t> children;
  for (u32 process = 0; process < 4; ++process) {
    children.push_back(fork());
    if (children.back() == 0) _exit(WorkInThreads(process, end));
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "a call failed, or a thread never had its turn";
  }
  const std::vector<u32> entries = EntriesInOrder(ReadFile(InFolder("all.xml")), 32);
  const std::string pairs = "\n" + ReadFile(InFolder("all.properties"));
  for (u32 worker = 0; worker < 32; ++worker) {
    const std::string name = std::to_string(worker);
    const u32 rounds =
        static_cast<u32>(strtoul(ReadFile("/run/rounds" + name).c_str(), nullptr, 10));
    EXPECT_EQ(entries[worker], rounds);
    u32 number = 0;
    EXPECT_EQ(
        ReadNumber(InFolder("all.ini"), "S" + std::to_string(worker % 4), "k" + name, &number),
        SM_STATUS_SUCCESS);
    EXPECT_EQ(number, rounds - 1);
    EXPECT_NE(pairs.find("\nk" + name + "=" + std::to_string(rounds - 1) + "\n"),
              std::string::npos);
  }
  EXPECT_EQ(NamesInFolder(), (std::set<std::string>{"all.ini", "all.properties", "all.xml"}));
}

// The parent's threads write while it forks; each child writes, locks and exits as a host does.
QVX_ALONE(Threads, ChildrenOfAProcessWhoseThreadsWriteDoTheirWorkAndExit) {
  // A sanitizer keeps its own locks over a fork, which the child may find taken.
  if (QVX_SANITIZED != 0) GTEST_SKIP();
  Start();
  const std::string path = InFolder("parent.ini");
  std::string expected = "[Long]\n";
  for (int line = 0; line < 2000; ++line) {
    expected += "key" + std::to_string(line) + "=to be kept as it is\n";
  }
  expected += "[A]\n";
  qvx::test::WriteFile(path, expected);
  for (u32 thread = 0; thread < 4; ++thread) {
    ASSERT_EQ(WriteNumber(path, "A", "key" + std::to_string(thread), 0), SM_STATUS_SUCCESS);
  }
  std::atomic<bool> running = true;
  std::atomic<u32> faults = 0;
  std::array<u32, 4> last = {};
  InThreads(5, [&](u32 thread) {
    if (thread < 4) {
      while (running) {
        faults +=
            WriteNumber(path, "A", "key" + std::to_string(thread), ++last[thread]) == 0 ? 0 : 1;
      }
      return;
    }
    for (int round = 0; round < 60; ++round) {
      const pid_t child = fork();
      if (child == 0) {
        (void)alarm(20);
        u32 number = 0;
        const bool good = WriteNumber(InFolder("child.ini"), "A", "b", 7) == SM_STATUS_SUCCESS &&
                          ReadNumber(InFolder("child.ini"), "A", "b", &number) == 0 && number == 7;
        exit(good ? 0 : 1);
      }
      int status = 0;
      faults += waitpid(child, &status, 0) == child && status == 0 ? 0 : 1;
    }
    running = false;
  });
  EXPECT_EQ(faults, 0U);
  for (u32 thread = 0; thread < 4; ++thread) {
    expected += "key" + std::to_string(thread) + "=" + std::to_string(last[thread]) + "\n";
  }
  EXPECT_TRUE(ReadFile(path) == expected) << ReadFile(path).size() << " " << expected.size();
}

}  // namespace
