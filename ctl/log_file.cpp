// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>

#include "ctl/output.h"
#include "os/uninterrupted.h"

namespace qvx::ctl {
namespace {

Descriptor OpenLog(const std::string& path) {
  return OpenDescriptor(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
}

}  // namespace

LogFile::LogFile(const std::string& path) : LogFile(OpenLog(path), path) {}

LogFile::LogFile(Descriptor file, const std::string& path) : path_(path), file_(std::move(file)) {
  if (!file_) throw SystemFailure(path, errno);
  struct stat status {};
  if (fstat(file_.Number(), &status) != 0) throw SystemFailure(path, errno);
  if (S_ISDIR(status.st_mode)) throw SystemFailure(path, EISDIR);
  if (!S_ISREG(status.st_mode)) throw Failure(kUnknown, path + ": no regular file");
  id_ = FileIdOf(status);
}

std::unique_ptr<LogFile> LogFile::OpenIfThere(const std::string& path) {
  Descriptor file = OpenLog(path);
  if (!file && errno == ENOENT) return nullptr;
  return std::unique_ptr<LogFile>(new LogFile(std::move(file), path));
}

size_t LogFile::Read(u64 offset, char* room, size_t size) {
  const ssize_t got =
      Uninterrupted([&] { return pread(file_.Number(), room, size, static_cast<off_t>(offset)); });
  if (got < 0) throw SystemFailure(path_, errno);
  return static_cast<size_t>(got);
}

u64 LogFile::Size() const {
  struct stat status {};
  if (fstat(file_.Number(), &status) != 0) throw SystemFailure(path_, errno);
  return static_cast<u64>(status.st_size);
}

bool LogFile::IsSameFile(const LogFile& other) const { return id_ == other.id_; }

bool LogFile::IsAt(const std::string& path) const {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && FileIdOf(status) == id_;
}

std::string LogFile::Key() const {
  struct stat status {};
  if (fstat(file_.Number(), &status) != 0) throw SystemFailure(path_, errno);
  return std::to_string(status.st_ino) + ":" + std::to_string(status.st_size) + ":" +
         std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
}

bool LogFile::HasHead() {
  char room[kLogHead.size()];
  return Read(0, room, sizeof(room)) == sizeof(room) &&
         std::string_view(room, sizeof(room)) == kLogHead;
}

// A damaged head is passed.
std::string LogFile::Mark() {
  LogReader reader(this);
  LogPart part = reader.Next();
  if (part == LogPart::kDamage) part = reader.Next();
  return part == LogPart::kEntry ? MarkOf(reader.Text()) : "";
}

std::string LogFile::MarkAt(u64 offset) {
  LogReader reader(this, offset);
  return reader.Next() == LogPart::kEntry ? MarkOf(reader.Text()) : "";
}

// FNV-1a, so that the next run recognizes it on any machine.
std::string MarkOf(const std::string& text) {
  u64 hash = 0xCBF29CE484222325;
  for (const char byte : text) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  }
  char mark[17];
  (void)snprintf(mark, sizeof(mark), "%016" PRIx64, hash);
  return mark;
}

std::string BackupPath(const std::string& path) {
  return path.empty() ? path : path.substr(0, path.size() - 1) + "_";
}

}  // namespace qvx::ctl
