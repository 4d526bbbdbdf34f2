// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// torture --floor|--goal PART ...: runs the parts and prints a line of the table for each. Exit
// status 1 when a point failed, or when a part tried none.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iterator>

#include "torture/torture.h"

namespace {

struct Part {
  const char* name;
  qvx::torture::Tally (*run)(bool goal);
};

constexpr Part kParts[] = {
    {"allocations", qvx::torture::Allocations},
    {"calls", qvx::torture::Calls},
    {"kills", qvx::torture::Kills},
    {"disk", qvx::torture::Disk},
    {"contention", qvx::torture::Contention},
    {"long", qvx::torture::LongRun},
};

const Part* Find(const char* name) {
  for (const Part& part : kParts) {
    if (strcmp(part.name, name) == 0) return &part;
  }
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (access("/run/qvx-sandbox", F_OK) != 0) {
    fputs("torture: runs only inside tests/sandbox\n", stderr);
    return 2;
  }
  setlinebuf(stdout);  // children must find nothing in it
  bool goal = false;
  bool bad = false;
  for (int at = 1; at < argc; ++at) {
    if (strcmp(argv[at], "--goal") == 0 || strcmp(argv[at], "--floor") == 0) {
      goal = strcmp(argv[at], "--goal") == 0;
      continue;
    }
    const Part* const part = Find(argv[at]);
    if (part == nullptr) {
      fprintf(stderr, "torture: no part %s\n", argv[at]);
      return 2;
    }
    const time_t begin = time(nullptr);
    qvx::torture::MakePlace();
    const qvx::torture::Tally tally = part->run(goal);
    printf("| %-34s | %8lu | %6lu | %5ld s |\n", tally.what, tally.points, tally.failed,
           static_cast<long>(time(nullptr) - begin));
    (void)fflush(stdout);
    bad = bad || tally.failed != 0 || tally.points == 0;
  }
  return bad ? 1 : 0;
}
