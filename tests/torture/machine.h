// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_MACHINE_H
#define QVX_TESTS_TORTURE_MACHINE_H

#include <sys/syscall.h>
#include <sys/user.h>
#include <ucontext.h>

#include <cstdint>

// The machine that the stepper changes registers of: x86 with 64 or 32 bits. All that differs
// between the two is here.
namespace qvx::torture {

#if defined(__x86_64__)

using RegisterValue = unsigned long long;
using Register = RegisterValue user_regs_struct::*;
inline constexpr Register kCallNumber = &user_regs_struct::orig_rax;
inline constexpr Register kResult = &user_regs_struct::rax;
inline constexpr Register kArguments[] = {&user_regs_struct::rdi, &user_regs_struct::rsi,
                                          &user_regs_struct::rdx, &user_regs_struct::r10,
                                          &user_regs_struct::r8};
inline constexpr int kCodePointer = REG_RIP;
inline constexpr unsigned kStatAt = SYS_newfstatat;

#elif defined(__i386__)

using RegisterValue = long;
using Register = RegisterValue user_regs_struct::*;
inline constexpr Register kCallNumber = &user_regs_struct::orig_eax;
inline constexpr Register kResult = &user_regs_struct::eax;
inline constexpr Register kArguments[] = {&user_regs_struct::ebx, &user_regs_struct::ecx,
                                          &user_regs_struct::edx, &user_regs_struct::esi,
                                          &user_regs_struct::edi};
inline constexpr int kCodePointer = REG_EIP;
inline constexpr unsigned kStatAt = SYS_fstatat64;

#else
#error "the stepper knows the registers of x86 only"
#endif

inline unsigned long ValueOf(const user_regs_struct& registers, Register which) {
  return static_cast<unsigned long>(registers.*which);
}
// The nth argument of the call, from 0.
inline unsigned long Argument(const user_regs_struct& registers, unsigned nth) {
  return ValueOf(registers, kArguments[nth]);
}

#if defined(__x86_64__)

// The call's number.
inline unsigned CallOf(const user_regs_struct& registers) {
  return static_cast<unsigned>(ValueOf(registers, kCallNumber));
}

// A place in a file, which is the nth argument.
inline uint64_t OffsetAt(const user_regs_struct& registers, unsigned nth) {
  return Argument(registers, nth);
}

#elif defined(__i386__)

// Calls that 32 bits have in a second form, because the first one has too narrow a field.
struct WiderCall {
  unsigned wider;
  unsigned first;
};
inline constexpr WiderCall kWiderCalls[] = {{SYS_fcntl64, SYS_fcntl},
                                            {SYS_stat64, SYS_stat},
                                            {SYS_lstat64, SYS_lstat},
                                            {SYS_fstat64, SYS_fstat},
                                            {SYS__llseek, SYS_lseek},
                                            {SYS_ftruncate64, SYS_ftruncate},
                                            {SYS_chown32, SYS_chown},
                                            {SYS_fchown32, SYS_fchown},
                                            {SYS_clock_nanosleep_time64, SYS_clock_nanosleep}};

// The number of the call's first form. The C library makes socket() by socketcall().
inline unsigned CallOf(const user_regs_struct& registers) {
  constexpr unsigned long kSocket = 1;
  const auto number = static_cast<unsigned>(ValueOf(registers, kCallNumber));
  if (number == SYS_socketcall && Argument(registers, 0) == kSocket) return SYS_socket;
  for (const WiderCall& call : kWiderCalls) {
    if (number == call.wider) return call.first;
  }
  return number;
}

// A place in a file: its lower half is the nth argument, its upper half the next one.
inline uint64_t OffsetAt(const user_regs_struct& registers, unsigned nth) {
  const uint64_t upper = Argument(registers, nth + 1);
  return upper << 32 | Argument(registers, nth);
}

#endif

}  // namespace qvx::torture

#endif
