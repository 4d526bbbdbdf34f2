// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// torture --sample|--floor|--goal PART ...: runs the parts, prints what goes wrong as it happens,
// and in the end a table with a line for each. Exit status 1 when a point failed, or when a part
// tried none.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iterator>

#include "torture/torture.h"

namespace {

// Fewer points than the least, in any run but a sample, mean that a part has lost some of its own.
struct Part {
  const char* name;
  qvx::torture::Tally (*run)(qvx::torture::Depth depth);
  unsigned long least;
};

constexpr Part kParts[] = {
    {"allocations", qvx::torture::Allocations, 3000},
    {"calls", qvx::torture::Calls, 2000},
    {"kills", qvx::torture::Kills, 1000},
    {"random", qvx::torture::RandomKills, 2000},
    {"power", qvx::torture::PowerCut, 48},
    {"disk", qvx::torture::Disk, 500},
    {"contention", qvx::torture::Contention, 10},
    {"long", qvx::torture::LongRun, 50000},
    {"secrets", qvx::torture::Secrets, 500},
};

const Part* Find(const char* name) {
  for (const Part& part : kParts) {
    if (strcmp(part.name, name) == 0) return &part;
  }
  return nullptr;
}

void CountPoints(const Part& part, qvx::torture::Tally* tally) {
  if (tally->points >= part.least) return;
  printf("  %lu points, of at least %lu\n", tally->points, part.least);
  ++tally->failed;
}

struct Option {
  const char* name;
  qvx::torture::Depth depth;
};

constexpr Option kOptions[] = {{"--sample", qvx::torture::Depth::kSample},
                               {"--floor", qvx::torture::Depth::kFloor},
                               {"--goal", qvx::torture::Depth::kGoal}};

// A line of the table, and whether it is a good one. A sample may leave out what the machine does
// not have.
bool Print(const qvx::torture::Tally& tally, qvx::torture::Depth depth, time_t begin) {
  if (!tally.possible && depth == qvx::torture::Depth::kSample) {
    printf("| %-46s | %8s | %6s | %7s |\n", tally.what.c_str(), "-", "-", "-");
    return true;
  }
  printf("| %-46s | %8lu | %6lu | %5ld s |\n", tally.what.c_str(), tally.points, tally.failed,
         static_cast<long>(time(nullptr) - begin));
  return tally.failed == 0 && tally.points != 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (access("/run/qvx-sandbox", F_OK) != 0) {
    fputs("torture: runs only inside tests/sandbox\n", stderr);
    return 2;
  }
  qvx::torture::WatchOwnBlocks();
  setlinebuf(stdout);  // children must find nothing in it
  auto depth = qvx::torture::Depth::kFloor;
  bool good = true;
  for (int at = 1; at < argc; ++at) {
    for (const Option& option : kOptions) {
      if (strcmp(argv[at], option.name) == 0) depth = option.depth;
    }
    const Part* const part = Find(argv[at]);
    if (part == nullptr) continue;
    const time_t begin = time(nullptr);
    qvx::torture::MakePlace();
    try {
      qvx::torture::Tally tally = part->run(depth);
      if (depth != qvx::torture::Depth::kSample) CountPoints(*part, &tally);
      good = Print(tally, depth, begin) && good;
    } catch (const qvx::torture::Tally& untilEnough) {
      good = Print(untilEnough, depth, begin) && good;
    }
  }
  return good ? 0 : 1;
}
