// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A disk is copied at once after a change, within it, and three seconds after: what a power cut
// would leave. The copy is mounted, which replays its journal; its file is judged, and the change
// is made again.
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "torture/loop_disk.h"
#include "torture/stepper.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kImage[] = "/run/torture.img";
constexpr char kFresh[] = "/run/torture-fresh.img";
constexpr char kCopy[] = "/run/torture-copy.img";
constexpr unsigned kSecondsAfter = 3;

// Both ways in which ext4 orders a file's data and its size; the journal is written every second.
constexpr const char* kModes[] = {"commit=1,data=ordered",
                                  "commit=1,data=writeback,noauto_da_alloc"};

enum class Moment { kWithin, kAtOnce, kLater };
constexpr const char* kMoments[] = {"within", "at once", "3 s after"};

struct Point {
  const Scene* scene;
  const char* mode;
  Moment moment;
  unsigned turn;  // which of the calls that change the disk a cut within follows
};

bool ChangesDisk(unsigned number) {
  return IsWrite(number) || number == SYS_fsync || number == SYS_rename ||
         number == SYS_ftruncate || number == SYS_unlink || number == SYS_openat;
}

// Copies the disk after a call within the change, or after all of them.
void RunUntilTheCut(const Point& point) {
  unsigned changes = 0;
  bool copied = false;
  bool killed = false;
  const auto look = [&](const Stop& stop) {
    if (point.moment != Moment::kWithin || stop.at != At::kExit) return Then::kGoOn;
    if (!ChangesDisk(stop.number) || changes++ != point.turn) return Then::kGoOn;
    CopyImage(kImage, kCopy);
    copied = true;
    return Then::kKill;
  };
  const auto body = [&point]() -> std::string {
    Begin();
    (void)point.scene->act();
    End();
    return "";
  };
  (void)Step(body, look, &killed);
  if (copied) return;
  if (point.moment == Moment::kLater) sleep(kSecondsAfter);
  CopyImage(kImage, kCopy);
}

// This disk alone: a flush of all disks would hide from another run what it looks for.
bool Flush(const std::string& folder) {
  const int place = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool flushed = place >= 0 && syncfs(place) == 0;
  close(place);
  return flushed;
}

std::string Try(const Point& point) {
  WriteText(kImage, ReadText(kFresh));
  const std::string folder = FolderOf(*point.scene);
  auto disk = std::make_unique<LoopDisk>(kImage, folder, point.mode);
  if (!*disk) return "no disk";
  Judge judge(*point.scene);
  if (!Flush(folder)) return "the disk cannot be flushed";
  RunUntilTheCut(point);
  disk.reset();
  disk = std::make_unique<LoopDisk>(kCopy, folder, point.mode);
  if (!*disk) return "the copied disk cannot be mounted";
  std::string wrong = judge.File(SM_STATUS_FAILURE, Torn::kLost);
  if (!wrong.empty()) return wrong;
  return InChild([&judge] {
    judge.BeginHere();
    return judge.Next();
  });
}

// One of each kind of change; all of them in the long form.
bool IsTried(const Scene& scene, Depth depth) {
  // The copied disk is another one than that of the note.
  if (scene.name == "log: torn by a kill") return false;
  if (depth == Depth::kGoal) return true;
  static const char* const kFew[] = {"INI: a key's value", "log: an entry"};
  static const char* const kMore[] = {"INI: a long value", "INI: a new section",
                                      "INI: a new file",   "key=value: a value",
                                      "log: a long entry", "log: moved to its backup"};
  for (const char* name : kFew) {
    if (scene.name == name) return true;
  }
  for (const char* name : kMore) {
    if (depth == Depth::kFloor && scene.name == name) return true;
  }
  return false;
}

}  // namespace

Tally PowerCut(Depth depth) {
  Tally tally{"power cuts"};
  if (!MakeImage(kFresh) || !LoopDisk(kFresh, kPlace, "")) {
    puts("  needs mkfs.ext4 and loop devices");
    tally.possible = false;
    return tally;
  }
  const unsigned times = depth == Depth::kGoal ? 10 : 1;
  unsigned turn = 0;
  for (const Scene& scene : UpdatingScenes()) {
    if (!IsTried(scene, depth)) continue;
    for (const char* mode : kModes) {
      for (const Moment moment : {Moment::kWithin, Moment::kAtOnce, Moment::kLater}) {
        for (unsigned time = 0; time < times; ++time) {
          const Point point = {&scene, mode, moment, turn++ % 6};
          tally.Add(Try(point),
                    scene.name + ", " + mode + ", " + kMoments[static_cast<int>(moment)]);
        }
      }
    }
  }
  (void)unlink(kImage);
  (void)unlink(kCopy);
  return tally;
}

}  // namespace qvx::torture
