// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/lock_holders.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/layout.h"
#include "ctl/output.h"
#include "ctl/shown_path.h"

namespace qvx::ctl {
namespace {

// A file as the system lists its locks; os/file_id.h has one as stat shows it.
struct LockedFile {
  unsigned major;
  unsigned minor;
  unsigned long long inode;
};

// The device of a mount as the system's lists name it: file systems with volumes or layers show
// another one to stat. False where the list does not have the mount.
bool FindMountDevice(unsigned long long mount, LockedFile* id) {
  std::ifstream list("/proc/self/mountinfo");
  for (std::string line; std::getline(list, line);) {
    unsigned long long number = 0;
    unsigned major = 0;
    unsigned minor = 0;
    if (sscanf(line.c_str(), "%llu %*u %u:%u", &number, &major, &minor) != 3) continue;
    if (number != mount) continue;
    id->major = major;
    id->minor = minor;
    return true;
  }
  return false;
}

LockedFile IdOf(const std::string& path) {
  struct statx status {};
  if (statx(AT_FDCWD, path.c_str(), AT_STATX_SYNC_AS_STAT, STATX_INO | STATX_MNT_ID, &status) !=
      0) {
    throw SystemFailure(path, errno);
  }
  LockedFile id{status.stx_dev_major, status.stx_dev_minor, status.stx_ino};
  if ((status.stx_mask & STATX_MNT_ID) != 0) (void)FindMountDevice(status.stx_mnt_id, &id);
  return id;
}

std::string TextOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string CommandOf(pid_t process) {
  std::string command = TextOf("/proc/" + std::to_string(process) + "/cmdline");
  while (!command.empty() && command.back() == '\0') {
    command.pop_back();
  }
  for (char& character : command) {
    if (character == '\0') character = ' ';
  }
  if (!command.empty()) return command;
  command = TextOf("/proc/" + std::to_string(process) + "/comm");
  return command.substr(0, command.find('\n'));
}

std::string UserOf(pid_t process) {
  struct stat status {};
  if (stat(("/proc/" + std::to_string(process)).c_str(), &status) != 0) return "";
  const passwd* const account = getpwuid(status.st_uid);
  return account == nullptr ? std::to_string(status.st_uid) : account->pw_name;
}

time_t BootTime() {
  std::istringstream lines(TextOf("/proc/stat"));
  long long time = 0;
  for (std::string line; std::getline(lines, line);) {
    if (sscanf(line.c_str(), "btime %lld", &time) == 1) break;
  }
  return static_cast<time_t>(time);
}

// The 22nd field; the second one is a name in brackets that may hold anything.
std::string StartOf(pid_t process) {
  const std::string text = TextOf("/proc/" + std::to_string(process) + "/stat");
  const size_t bracket = text.rfind(')');
  if (bracket == std::string::npos) return "";
  std::istringstream fields(text.substr(bracket + 1));
  std::string field;
  for (int at = 3; at <= 22; ++at) {
    fields >> field;
  }
  const long long ticks = strtoll(field.c_str(), nullptr, 10);
  const time_t start = BootTime() + static_cast<time_t>(ticks / sysconf(_SC_CLK_TCK));
  std::tm parts{};
  char room[32];
  if (localtime_r(&start, &parts) == nullptr) return "";
  return {room, strftime(room, sizeof(room), "%Y-%m-%d %H:%M:%S", &parts)};
}

// "1: POSIX  ADVISORY  WRITE 123 08:01:456 0 EOF", with "->" before the kind of one that waits.
bool ParseLock(const std::string& line, const LockedFile& wanted, LockHolder* holder) {
  std::istringstream words(line);
  std::string word;
  words >> word >> word;
  holder->waits = word == "->";
  if (holder->waits) words >> word;
  std::string advisory;
  std::string mode;
  std::string file;
  if (!(words >> advisory >> mode >> holder->process >> file) || word != "POSIX") return false;
  LockedFile id{};
  if (sscanf(file.c_str(), "%x:%x:%llu", &id.major, &id.minor, &id.inode) != 3) return false;
  holder->writes = mode == "WRITE";
  return id.major == wanted.major && id.minor == wanted.minor && id.inode == wanted.inode;
}

std::string Describe(const LockHolder& holder) {
  const std::string process =
      "process " + std::to_string(holder.process) + " (" + holder.command + ")";
  return holder.writes ? process : process + ", which reads";
}

// A writer if there is one; a reader only where all holders count.
std::string DescribeFirst(bool writersAlone) {
  std::string reader;
  try {
    for (const LockHolder& holder : FindLockHolders()) {
      if (holder.waits) continue;
      if (holder.writes) return Describe(holder);
      if (reader.empty()) reader = Describe(holder);
    }
  } catch (const Failure&) {
    return "";
  }
  return writersAlone ? "" : reader;
}

bool MayWrite(const std::string& path) {
  return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

}  // namespace

std::string LockFilePath() { return ShownPath(kIPCFilePath); }

std::vector<LockHolder> FindLockHolders() {
  const LockedFile wanted = IdOf(LockFilePath());
  std::ifstream list("/proc/locks");
  if (!list) throw SystemFailure("/proc/locks", errno);
  std::vector<LockHolder> holders;
  for (std::string line; std::getline(list, line);) {
    LockHolder holder{};
    if (!ParseLock(line, wanted, &holder)) continue;
    holder.command = CommandOf(holder.process);
    holder.user = UserOf(holder.process);
    holder.start = StartOf(holder.process);
    holders.push_back(holder);
  }
  return holders;
}

std::string DescribeHolder() { return DescribeFirst(false); }

std::string DescribeBlockingHolder() { return DescribeFirst(!MayWrite(LockFilePath())); }

}  // namespace qvx::ctl
