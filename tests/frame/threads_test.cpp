// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Threads of one process that work on the same files at once: nothing is lost, each thread's order
// is kept, no call fails and no temporary file stays.
#include "support/threads.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "qvxcs/command_log.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "frame/shared_files.h"
#include "support/alloc_fault.h"
#include "support/alone.h"
#include "support/files.h"
#include "support/turn_holder.h"

namespace qvx::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

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

QVX_ALONE(Threads, WritersAndReadersOfOneKeyValueFileMeetNoHalfFile) {
  Start();
  const std::string path = InFolder("one.properties");
  WriteFile(path, "k0=0\nk1=0\nk2=0\nk3=0\nk4=0\nk5=0\nk6=0\nk7=0\n");
  std::array<u32, 8> last = {};
  std::atomic<u32> faults = 0;
  const auto end = steady_clock::now() + milliseconds(700);
  InThreads(16, [&](u32 at) {
    while (steady_clock::now() < end) {
      if (at < 8) {
        faults += SetNumber(path, "k" + std::to_string(at), ++last[at]) == 0 ? 0 : 1;
        continue;
      }
      faults += CountOfEntries(path) == 8 ? 0 : 1;
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

// A call that finds the turn taken, and the sleeps after which it gives up.
struct Refused {
  const char* what;
  u32 (*call)();
  u32 sleeps;
};

u32 ReadMaximum() {
  u32 size = 0;
  return PXTGetCmdLogMaxSize(&size);
}

constexpr u32 kAMinute = 60000;
const Refused kRefused[] = {
    {"append", [] { return Append(InFolder("a.xml"), 0, 1); }, kAMinute},
    {"first append", [] { return Append(InFolder("new.xml"), 0, 1); }, kAMinute},
    {"clear", [] { return PXTClearXMLLog(InFolder("a.xml").c_str(), "u", "s"); }, kAMinute},
    {"write", [] { return WriteNumber(InFolder("a.ini"), "A", "k", 2); }, kAMinute},
    {"new section", [] { return WriteNumber(InFolder("a.ini"), "B", "k", 2); }, kAMinute},
    {"new file", [] { return WriteNumber(InFolder("new.ini"), "A", "k", 2); }, kAMinute},
    {"write at once",
     [] {
       return PXTWriteINIPathFileValue("A", "k", QVX_INI_ASTRING, "2", 2, InFolder("a.ini").c_str(),
                                       QVX_LOCK_TRY);
     },
     0},
    {"read",
     [] {
       u32 number = 0;
       return ReadNumber(InFolder("a.ini"), "A", "k", &number);
     },
     kAMinute},
    {"key=value", [] { return SetNumber(InFolder("a.properties"), "k", 2); }, kAMinute},
    {"command log", ReadMaximum, kAMinute},
};

QVX_ALONE(Threads, ACallThatFindsTheTurnTakenGivesUpInTheLocksOwnTimeAndWritesNothing) {
  Start();
  ASSERT_EQ(Append(InFolder("a.xml"), 0, 0), SM_STATUS_SUCCESS);
  WriteFile(InFolder("a.ini"), "[A]\nk=1\n");
  WriteFile(InFolder("a.properties"), "k=1\n");
  const std::string log = ReadFile(InFolder("a.xml"));
  WhileAnotherHasTheTurn([] {
    for (const Refused& refused : kRefused) {
      const CountSleeps sleeps;
      EXPECT_EQ(refused.call(), SM_STATUS_LOCK_FAILED) << refused.what;
      EXPECT_EQ(CountSleeps::Count(), refused.sleeps) << refused.what;
    }
    const CountSleeps sleeps;
    EXPECT_EQ(CountOfEntries(InFolder("a.properties")), 0U);
    EXPECT_EQ(CountSleeps::Count(), kAMinute);
  });
  EXPECT_EQ(ReadFile(InFolder("a.xml")), log);
  EXPECT_EQ(ReadFile(InFolder("a.ini")), "[A]\nk=1\n");
  EXPECT_EQ(ReadFile(InFolder("a.properties")), "k=1\n");
  EXPECT_EQ(NamesInFolder(), (std::set<std::string>{"a.ini", "a.properties", "a.xml"}));
  for (const Refused& refused : kRefused) {
    EXPECT_EQ(refused.call(), SM_STATUS_SUCCESS) << refused.what;
  }
}

}  // namespace
}  // namespace qvx::test
