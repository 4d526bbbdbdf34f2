// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A login whose first, second, ... allocation or system call fails, after which no copy of the
// password is in any memory that the process may write, in characters of 8, 16 or 32 bits.
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "torture/fault.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

std::string SearchRegion(const unsigned char* begin, const unsigned char* end) {
  for (const size_t width : {size_t{1}, size_t{2}, size_t{4}}) {
    const size_t length = kSecretLength * width;
    for (const unsigned char* at = begin; at + length <= end; ++at) {
      at = static_cast<const unsigned char*>(
          memchr(at, 'o', static_cast<size_t>(end - at) - length + 1));
      if (at == nullptr) break;
      if (IsSecret(at, width)) return "the password is left, " + std::to_string(width) + " bytes";
    }
  }
  return "";
}

// The memory is read where it lies: a copy of it would hold what is sought.
std::string SearchMemory() {
  FILE* const maps = fopen("/proc/self/maps", "re");
  char line[512];
  std::string found;
  while (found.empty() && fgets(line, sizeof(line), maps) != nullptr) {
    uintptr_t begin = 0;
    uintptr_t end = 0;
    char rights[5] = "";
    if (sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s", &begin, &end, rights) != 3) continue;
    if (strncmp(rights, "rw", 2) != 0) continue;
    found = SearchRegion(reinterpret_cast<const unsigned char*>(begin),
                         reinterpret_cast<const unsigned char*>(end));
    if (!found.empty()) found += line;
  }
  (void)fclose(maps);
  return found;
}

// To the next point: a login makes some hundreds.
long Stride(long nth, Depth depth) {
  if (depth == Depth::kGoal) return 1;
  return 1 + nth / (depth == Depth::kSample ? 4 : 32);
}

std::string TryAllocation(const Scene& login, long nth, Failure failure) {
  login.prepare();
  if (failure == Failure::kFromThenOn) GiveUpAfter(5);
  FailAllocation(nth, failure);
  (void)login.act();
  FailNoAllocation();
  return AllocationFailed() ? "reached" + SearchMemory() : "";
}

void AddAllocations(const Scene& login, Depth depth, Tally* tally) {
  for (const Failure failure : {Failure::kAlone, Failure::kFromThenOn}) {
    for (long nth = 1;; nth += Stride(nth, depth)) {
      std::string wrong = InChild([&] { return TryAllocation(login, nth, failure); });
      if (wrong.empty()) break;
      if (wrong.rfind("reached", 0) == 0) wrong.erase(0, 7);
      if (IsEndInOthers(wrong)) wrong.clear();
      tally->Add(wrong, "allocation " + std::to_string(nth) +
                            (failure == Failure::kAlone ? "" : " and all that follow"));
    }
  }
}

struct CallFault {
  int error;
  bool fromThenOn;
};

std::vector<CallFault> CallFaults(Depth depth) {
  if (depth == Depth::kSample) return {{EIO, false}, {EACCES, false}, {EMFILE, false}, {EIO, true}};
  std::vector<CallFault> faults;
  for (const int error : {ENOSPC, EIO, EINTR, EDQUOT, EACCES, EMFILE, EROFS, ENOLCK}) {
    faults.push_back({error, false});
    const bool usual = error == EIO || error == EACCES;
    // A call that is interrupted is made again: for ever, if it always is.
    if (error != EINTR && (usual || depth == Depth::kGoal)) faults.push_back({error, true});
  }
  return faults;
}

void AddCalls(const Scene& login, Depth depth, Tally* tally) {
  for (const CallFault& point : CallFaults(depth)) {
    for (long nth = 1;; nth += Stride(nth, depth)) {
      Fault fault(static_cast<unsigned>(nth), point.error, point.fromThenOn);
      bool killed = false;
      const auto body = [&login] {
        login.prepare();
        GiveUpAfter(20);
        Begin();
        (void)login.act();
        End();
        return SearchMemory();
      };
      const std::string wrong = Step(
          body, [&fault](const Stop& stop) { return fault(stop); }, &killed);
      if (!fault.Met()) break;
      tally->Add(wrong, "call " + std::to_string(nth) + ", " + strerrorname_np(point.error) +
                            (point.fromThenOn ? " from then on" : ""));
    }
  }
}

}  // namespace

Tally Secrets(Depth depth) {
  Tally tally{"passwords sought after failed logins"};
  const Scene login = LoginScene();
  tally.Add(InChild([&login]() -> std::string {
              return login.act() == 0 ? SearchMemory() : "the login fails";
            }),
            "a login");
  AddAllocations(login, depth, &tally);
  AddCalls(login, depth, &tally);
  return tally;
}

}  // namespace qvx::torture
