// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_STEPPER_H
#define QVX_TESTS_TORTURE_STEPPER_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>

// Runs a child that stops at each of its system calls between Begin() and End().
namespace qvx::torture {

enum class At { kEntry, kExit };

struct Stop {
  pid_t child;
  unsigned nth;  // the call's number, from 1
  At at;
  unsigned number;  // the system call, as CallOf() of machine.h names it
};

enum class Then { kGoOn, kKill };

// The child's marks.
void Begin();
void End();

// Instead of the call nothing is done: it fails with `error` (0: it returns 0).
void Refuse(const Stop& stop);
void SetResult(const Stop& stop, long result);
// What a write is about to write, and its place in the file, where it names one.
struct Span {
  unsigned long size = 0;
  bool placed = false;
  uint64_t offset = 0;
};
Span SpanOf(const Stop& stop);
// It writes less.
void CutWrite(const Stop& stop, unsigned long size);

// Runs `body` in a child until it ends or `look` says to kill it. Returns what the child said was
// wrong; `killed` is set where it was killed.
std::string Step(const std::function<std::string()>& body,
                 const std::function<Then(const Stop&)>& look, bool* killed);

// Whether the library itself makes such a call for its files.
bool IsFileCall(unsigned number);
bool IsWrite(unsigned number);
// Whether the call asks which file the lock's descriptor is, or releases the lock. Both fail on
// no real system, and what they guard cannot be seen then.
bool IsAboutTheLock(const Stop& stop);
// Whether the call asks for the lock.
bool TakesTheLock(const Stop& stop);

}  // namespace qvx::torture

#endif
