// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "torture/stepper.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <iterator>

#include "torture/machine.h"

namespace qvx::torture {
namespace {

// No system has these; they fail, and are seen.
constexpr long kBegin = 500001;
constexpr long kEnd = 500002;

constexpr unsigned kFileCalls[] = {
    SYS_open,      SYS_openat,  SYS_read,     SYS_pread64,   SYS_write,  SYS_pwrite64,
    SYS_writev,    SYS_pwritev, SYS_close,    SYS_lseek,     SYS_fsync,  SYS_fdatasync,
    SYS_ftruncate, SYS_rename,  SYS_renameat, SYS_renameat2, SYS_unlink, SYS_unlinkat,
    SYS_chmod,     SYS_fchmod,  SYS_fchmodat, SYS_chown,     SYS_fchown, SYS_fcntl,
    SYS_stat,      SYS_fstat,   SYS_lstat,    kStatAt,       SYS_statx,  SYS_mkdir,
    SYS_rmdir,     SYS_access,  SYS_socket};

user_regs_struct Registers(pid_t child) {
  user_regs_struct registers = {};
  if (ptrace(PTRACE_GETREGS, child, nullptr, &registers) != 0) abort();
  return registers;
}

unsigned long Peek(const Stop& stop, unsigned long place) {
  return static_cast<unsigned long>(ptrace(PTRACE_PEEKDATA, stop.child, place, nullptr));
}

void SetRegister(const Stop& stop, Register which, unsigned long value) {
  user_regs_struct registers = Registers(stop.child);
  registers.*which = static_cast<RegisterValue>(value);
  if (ptrace(PTRACE_SETREGS, stop.child, nullptr, &registers) != 0) abort();
}

// Where the length of a part of pwritev() is noted.
unsigned long LengthOfPart(const user_regs_struct& registers, unsigned part) {
  return Argument(registers, 1) + sizeof(iovec) * part + offsetof(iovec, iov_len);
}

std::string ReadAll(int file) {
  std::string text;
  char piece[4096];
  for (ssize_t got = 0; (got = read(file, piece, sizeof(piece))) > 0;) {
    text.append(piece, static_cast<size_t>(got));
  }
  close(file);
  return text;
}

[[noreturn]] void Child(const std::function<std::string()>& body, int out) {
  if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0) _exit(9);
  (void)alarm(60);
  const std::string wrong = body();
  (void)!write(out, wrong.data(), wrong.size());
  _exit(0);
}

}  // namespace

void Begin() { (void)syscall(kBegin); }
void End() { (void)syscall(kEnd); }

bool IsFileCall(unsigned number) {
  return std::find(std::begin(kFileCalls), std::end(kFileCalls), number) != std::end(kFileCalls);
}

bool IsWrite(unsigned number) { return number == SYS_write || number == SYS_pwritev; }

namespace {

bool IsLockCall(const Stop& stop, short type) {
  if (stop.number != SYS_fcntl) return false;
  const user_regs_struct registers = Registers(stop.child);
  const unsigned long command = Argument(registers, 1);
  if (command != F_SETLK && command != F_SETLKW) return false;
  return static_cast<short>(Peek(stop, Argument(registers, 2))) == type;
}

}  // namespace

bool TakesTheLock(const Stop& stop) {
  return IsLockCall(stop, F_WRLCK) || IsLockCall(stop, F_RDLCK);
}

bool IsAboutTheLock(const Stop& stop) {
  if (IsLockCall(stop, F_UNLCK)) return true;
  if (stop.number != SYS_fstat && stop.number != kStatAt && stop.number != SYS_statx) return false;
  const auto file = static_cast<int>(Argument(Registers(stop.child), 0));
  const std::string link = "/proc/" + std::to_string(stop.child) + "/fd/" + std::to_string(file);
  char path[256] = "";
  const ssize_t length = readlink(link.c_str(), path, sizeof(path) - 1);
  return length > 0 && std::string(path).find(".qvxipc") != std::string::npos;
}

void Refuse(const Stop& stop) { SetRegister(stop, kCallNumber, static_cast<unsigned long>(-1)); }

void SetResult(const Stop& stop, long result) {
  SetRegister(stop, kResult, static_cast<unsigned long>(result));
}

Span SpanOf(const Stop& stop) {
  const user_regs_struct registers = Registers(stop.child);
  const unsigned long count = Argument(registers, 2);  // of bytes, or of parts
  if (stop.number == SYS_write) return {count, false, 0};
  Span span = {0, true, OffsetAt(registers, 3)};
  for (unsigned part = 0; part < count; ++part) {
    span.size += Peek(stop, LengthOfPart(registers, part));
  }
  return span;
}

void CutWrite(const Stop& stop, unsigned long size) {
  if (stop.number == SYS_write) return SetRegister(stop, kArguments[2], size);
  const user_regs_struct registers = Registers(stop.child);
  unsigned long left = size;
  for (unsigned part = 0; part < Argument(registers, 2); ++part) {
    const unsigned long place = LengthOfPart(registers, part);
    const unsigned long length = Peek(stop, place);
    if (length > left && ptrace(PTRACE_POKEDATA, stop.child, place, left) != 0) abort();
    left -= std::min(length, left);
  }
}

std::string Step(const std::function<std::string()>& body,
                 const std::function<Then(const Stop&)>& look, bool* killed) {
  *killed = false;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) abort();
  const pid_t child = fork();
  if (child < 0) abort();
  if (child == 0) Child(body, ends[1]);
  close(ends[1]);
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) abort();
  if (ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0) {
    abort();
  }
  bool inside = false;
  Stop stop = {child, 0, At::kExit, 0};
  long signal = 0;
  while (ptrace(inside || stop.nth == 0 ? PTRACE_SYSCALL : PTRACE_CONT, child, nullptr, signal) ==
             0 &&
         waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    signal = 0;
    if (WSTOPSIG(status) != (SIGTRAP | 0x80)) {
      signal = WSTOPSIG(status);
      continue;
    }
    stop.at = stop.at == At::kExit ? At::kEntry : At::kExit;
    if (stop.at == At::kEntry) stop.number = CallOf(Registers(child));
    if (stop.number == kBegin) inside = true;
    if (stop.number == kEnd) {
      inside = false;
      stop.nth = stop.nth == 0 ? 1 : stop.nth;
    }
    if (stop.number == kBegin || stop.number == kEnd || !inside) continue;
    if (stop.at == At::kEntry) ++stop.nth;
    if (look(stop) == Then::kKill) {
      (void)kill(child, SIGKILL);
      (void)waitpid(child, &status, 0);
      *killed = true;
      close(ends[0]);
      return "";
    }
  }
  const std::string wrong = ReadAll(ends[0]);
  if (WIFSIGNALED(status)) return "ended by signal " + std::to_string(WTERMSIG(status));
  return wrong;
}

}  // namespace qvx::torture
