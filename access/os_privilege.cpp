// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/os_privilege.h"

#include <grp.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>

#include "access/account.h"
#include "access/role.h"
#include "base/heap.h"

namespace qvx {
namespace {

// The group database from its start; closed at the end of the scope.
class GroupWalk {
 public:
  GroupWalk() { setgrent(); }
  ~GroupWalk() { endgrent(); }
  GroupWalk(const GroupWalk&) = delete;
  GroupWalk& operator=(const GroupWalk&) = delete;

  // Null at the end, and where an entry cannot be read.
  const group* Next() {
    while (room_ || Grow(kEntryRoom)) {
      group* found = nullptr;
      // This walk still owns the room, which the analyzer does not see.
      // NOLINTNEXTLINE(clang-analyzer-unix.Malloc)
      const int error = getgrent_r(&entry_, room_.get(), size_, &found);
      if (error == 0) return found;
      if (error != ERANGE || !Grow(size_ * 2)) return nullptr;
    }
    return nullptr;
  }

 private:
  bool Grow(size_t size) {
    if (size > kMaxEntryRoom) return false;
    room_ = AllocArray<astring>(size);
    size_ = size;
    return room_ != nullptr;
  }

  group entry_{};
  HeapArray<astring> room_;
  size_t size_ = 0;
};

}  // namespace

u32 OSGetProcessRights() {
  if (geteuid() == 0) {
    return getuid() == 0 ? QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT : QVX_PRIV_ADMINISTRATOR;
  }
  return getegid() == 0 ? QVX_PRIV_POWERUSER : QVX_PRIV_USER;
}

astring* OSGetProcessUser() { return NameOfUser(getuid()).release(); }

u32 GetOSPrivilege(SystemUser& user) {
  if (!user.IsKnown()) return QVX_PRIV_NONE;
  if (user.IsSuperuser()) return QVX_PRIV_ADMINISTRATOR;
  const std::span<const gid_t> groups = user.Groups();
  const bool inGroup0 = std::find(groups.begin(), groups.end(), gid_t{0}) != groups.end();
  return inGroup0 ? QVX_PRIV_POWERUSER : QVX_PRIV_USER;
}

u32 GetOSPrivilege(const astring* userName) {
  SystemUser user(userName);
  return GetOSPrivilege(user);
}

u32 getugroups(u32 max, u32* groups, const astring* name) {
  if (name == nullptr || (max != 0 && groups == nullptr)) return 0;
  u32 count = 0;
  GroupWalk walk;
  while (const group* entry = walk.Next()) {
    for (astring** member = entry->gr_mem; *member != nullptr; ++member) {
      if (strcmp(*member, name) != 0) continue;
      if (max != 0) {
        if (count == max) return count;
        groups[count] = entry->gr_gid;
      }
      ++count;
    }
  }
  return count;
}

s32 isuserroot(const astring* name) { return SystemUser(name).IsSuperuser() ? 0 : -1; }

}  // namespace qvx
