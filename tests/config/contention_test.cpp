// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Many processes change and read one INI file at the same time.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <vector>

#include "qvxcs/ini_file.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"

namespace qvx {
namespace {

constexpr char kPath[] = "/tmp/shared/a.ini";
constexpr u32 kWriters = 8;
constexpr u32 kReaders = 8;
constexpr u32 kWrites = 26;
constexpr u32 kFewestReads = 10;
constexpr size_t kValueLength = 3000;
constexpr s32 kText = 1;

// What the processes share: the start signal, and how many writers are done.
struct Shared {
  std::atomic<u32> ready;
  std::atomic<bool> go;
  std::atomic<u32> writersDone;
};

// Each value repeats one letter, so that a mixed or cut value shows.
std::string ValueOf(u32 round) {
  return std::string(kValueLength, static_cast<char>('a' + round % 26));
}

std::string KeyOf(u32 writer) { return "writer" + std::to_string(writer); }

bool IsOneLetter(const std::string& value) {
  return value.size() == kValueLength && value.front() >= 'a' && value.front() <= 'z' &&
         value.find_first_not_of(value.front()) == std::string::npos;
}

// Removes the expected text from the front.
bool Skip(std::string* text, const std::string& expected) {
  if (text->compare(0, expected.size(), expected) != 0) return false;
  text->erase(0, expected.size());
  return true;
}

bool IsWholeFile(std::string text) {
  bool good = Skip(&text, "[shared]\n");
  for (u32 writer = 0; good && writer < kWriters; ++writer) {
    good = Skip(&text, KeyOf(writer) + "=") && IsOneLetter(text.substr(0, kValueLength)) &&
           Skip(&text, std::string(kValueLength, text.front()) + "\n");
  }
  return good && text.empty();
}

bool Writer(u32 writer, Shared* shared) {
  bool good = true;
  const std::string key = KeyOf(writer);
  for (u32 round = 0; round < kWrites; ++round) {
    const std::string value = ValueOf(round);
    good &= PXTWriteINIPathFileValue("shared", key.c_str(), kText, value.c_str(), kValueLength + 1,
                                     kPath, QVX_LOCK_WAIT) == SM_STATUS_SUCCESS;
  }
  ++shared->writersDone;
  return good;
}

bool ReadsWholeValue(u32 writer) {
  char value[kValueLength + 2] = {};
  u32 size = sizeof(value);
  return PXTReadINIPathFileValue("shared", KeyOf(writer).c_str(), kText, value, &size, nullptr, 0,
                                 kPath, QVX_LOCK_WAIT) == SM_STATUS_SUCCESS &&
         size == kValueLength + 1 && IsOneLetter(value);
}

// Reads under the lock through the library, and without the lock as any other program would.
bool Reader(Shared* shared) {
  bool good = true;
  for (u32 read = 0; read < kFewestReads || shared->writersDone < kWriters; ++read) {
    good &= ReadsWholeValue(read % kWriters) && IsWholeFile(test::ReadFile(kPath));
  }
  return good;
}

// Processes with an even number attach themselves; those with an odd number were forked by an
// attached process. Record locks are not inherited, so both kinds need their own hold.
[[noreturn]] void Run(u32 number, Shared* shared) {
  (void)alarm(250);
  const bool attached = number % 2 == 1 || ModuleAttach() == 1;
  ++shared->ready;
  while (!shared->go) {
    (void)usleep(1000);
  }
  const bool good = number < kWriters ? Writer(number, shared) : Reader(shared);
  _exit(attached && good ? 0 : 1);
}

void Start(u32 first, Shared* shared, std::vector<pid_t>* children) {
  for (u32 number = first; number < kWriters + kReaders; number += 2) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      Run(number, shared);
    }
    children->push_back(child);
  }
}

std::string FileOf(u32 round) {
  std::string text = "[shared]\n";
  for (u32 writer = 0; writer < kWriters; ++writer) {
    text += KeyOf(writer) + "=" + ValueOf(round) + "\n";
  }
  return text;
}

TEST(Contention, SixteenProcessesNeverSeeHalfAFileOrAMissingOne) {
  void* const page = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(page, MAP_FAILED);
  auto* const shared = new (page) Shared{};
  ASSERT_EQ(mkdir("/tmp/shared", 0755), 0);
  test::WriteFile(kPath, FileOf(0));

  std::vector<pid_t> children;
  Start(0, shared, &children);
  ASSERT_EQ(ModuleAttach(), 1);
  Start(1, shared, &children);
  while (shared->ready < kWriters + kReaders) {
    (void)usleep(1000);
  }
  shared->go = true;
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  }
  EXPECT_EQ(test::ReadFile(kPath), FileOf(kWrites - 1)) << "no writer's last value was lost";
  EXPECT_TRUE(test::LockIsFree());
  (void)munmap(page, 4096);
}

}  // namespace
}  // namespace qvx
