// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "torture/stepper.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iterator>

#if !defined(__x86_64__)
#error "the stepper changes the registers of 64-bit x86"
#endif

namespace qvx::torture {
namespace {

// No system has these; they fail, and are seen.
constexpr long kBegin = 500001;
constexpr long kEnd = 500002;

constexpr unsigned kFileCalls[] = {
    SYS_open,      SYS_openat,  SYS_read,     SYS_pread64,    SYS_write,  SYS_pwrite64,
    SYS_writev,    SYS_pwritev, SYS_close,    SYS_lseek,      SYS_fsync,  SYS_fdatasync,
    SYS_ftruncate, SYS_rename,  SYS_renameat, SYS_renameat2,  SYS_unlink, SYS_unlinkat,
    SYS_chmod,     SYS_fchmod,  SYS_fchmodat, SYS_chown,      SYS_fchown, SYS_fcntl,
    SYS_stat,      SYS_fstat,   SYS_lstat,    SYS_newfstatat, SYS_mkdir,  SYS_rmdir,
    SYS_access,    SYS_socket};

user_regs_struct Registers(pid_t child) {
  user_regs_struct registers = {};
  if (ptrace(PTRACE_GETREGS, child, nullptr, &registers) != 0) abort();
  return registers;
}

void SetRegisters(pid_t child, const user_regs_struct& registers) {
  if (ptrace(PTRACE_SETREGS, child, nullptr, &registers) != 0) abort();
}

unsigned long Peek(const Stop& stop, unsigned long place) {
  return static_cast<unsigned long>(ptrace(PTRACE_PEEKDATA, stop.child, place, nullptr));
}

// Where the length of a part of pwritev() is noted: parts are pairs of an address and a length.
unsigned long LengthOfPart(const user_regs_struct& registers, unsigned part) {
  return registers.rsi + 16UL * part + 8;
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
  if (registers.rsi != F_SETLK && registers.rsi != F_SETLKW) return false;
  const long record = ptrace(PTRACE_PEEKDATA, stop.child, registers.rdx, nullptr);
  return static_cast<short>(record) == type;
}

}  // namespace

bool TakesTheLock(const Stop& stop) {
  return IsLockCall(stop, F_WRLCK) || IsLockCall(stop, F_RDLCK);
}

bool IsAboutTheLock(const Stop& stop) {
  if (IsLockCall(stop, F_UNLCK)) return true;
  if (stop.number != SYS_fstat && stop.number != SYS_newfstatat) return false;
  const user_regs_struct registers = Registers(stop.child);
  const std::string link = "/proc/" + std::to_string(stop.child) + "/fd/" +
                           std::to_string(static_cast<int>(registers.rdi));
  char path[256] = "";
  const ssize_t length = readlink(link.c_str(), path, sizeof(path) - 1);
  return length > 0 && std::string(path).find(".qvxipc") != std::string::npos;
}

void Refuse(const Stop& stop) {
  user_regs_struct registers = Registers(stop.child);
  registers.orig_rax = static_cast<unsigned long long>(-1);
  SetRegisters(stop.child, registers);
}

void SetResult(const Stop& stop, long result) {
  user_regs_struct registers = Registers(stop.child);
  registers.rax = static_cast<unsigned long long>(result);
  SetRegisters(stop.child, registers);
}

Span SpanOf(const Stop& stop) {
  const user_regs_struct registers = Registers(stop.child);
  if (stop.number == SYS_write) return {registers.rdx, false, 0};
  Span span = {0, true, registers.r10};
  for (unsigned part = 0; part < registers.rdx; ++part) {
    span.size += Peek(stop, LengthOfPart(registers, part));
  }
  return span;
}

void CutWrite(const Stop& stop, unsigned long size) {
  user_regs_struct registers = Registers(stop.child);
  if (stop.number == SYS_write) {
    registers.rdx = size;
    return SetRegisters(stop.child, registers);
  }
  unsigned part = 0;
  for (unsigned long left = size; part < registers.rdx; ++part) {
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
    const user_regs_struct registers = Registers(child);
    stop.at = stop.at == At::kExit ? At::kEntry : At::kExit;
    if (stop.at == At::kEntry) stop.number = static_cast<unsigned>(registers.orig_rax);
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
