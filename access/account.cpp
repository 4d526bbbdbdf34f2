// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/account.h"

#include <grp.h>
#include <pwd.h>

#include <algorithm>
#include <cerrno>

namespace qvx {
namespace {

constexpr int kGroupRoom = 100;

// Retries with more and more room until the entry fits; its texts are in `room`.
template <typename Entry, typename Key>
bool LookUp(int (*ask)(Key, Entry*, char*, size_t, Entry**), Key key, Entry* entry,
            HeapArray<astring>* room) {
  for (size_t size = kEntryRoom; size <= kMaxEntryRoom; size *= 2) {
    *room = AllocArray<astring>(size);
    if (!*room) return false;
    Entry* found = nullptr;
    const int error = ask(key, entry, room->get(), size, &found);
    if (error != ERANGE) return error == 0 && found != nullptr;
  }
  return false;
}

}  // namespace

bool FindAccount(const astring* name, Account* account) {
  passwd entry{};
  HeapArray<astring> room;
  if (!LookUp(getpwnam_r, name, &entry, &room)) return false;
  *account = Account{entry.pw_uid, entry.pw_gid};
  return true;
}

HeapArray<astring> NameOfUser(uid_t user) {
  passwd entry{};
  HeapArray<astring> room;
  if (!LookUp(getpwuid_r, user, &entry, &room) || entry.pw_name == nullptr) return nullptr;
  return CopyText(entry.pw_name);
}

HeapArray<astring> NameOfGroup(gid_t group) {
  ::group entry{};
  HeapArray<astring> room;
  if (!LookUp(getgrgid_r, group, &entry, &room) || entry.gr_name == nullptr) return nullptr;
  return CopyText(entry.gr_name);
}

std::optional<gid_t> FindGroup(const astring* name) {
  ::group entry{};
  HeapArray<astring> room;
  if (!LookUp(getgrnam_r, name, &entry, &room)) return std::nullopt;
  return entry.gr_gid;
}

bool SystemUser::IsKnown() {
  if (known_ == Answer::kNotAsked) {
    known_ = name_ != nullptr && FindAccount(name_, &account_) ? Answer::kYes : Answer::kNo;
  }
  return known_ == Answer::kYes;
}

// Deliberate: without enough memory for the list the user has no groups, so the entries for anyone
// decide, even where they grant more. Held by
// RoleMapAlgorithm.WithoutMemoryForTheGroupListOnlyTheAnyUserEntriesCount.
std::span<const gid_t> SystemUser::Groups() {
  if (!groupsAsked_ && IsKnown() && !FillGroups(kGroupRoom)) (void)FillGroups(groupCount_);
  groupsAsked_ = true;
  return {groups_.get(), groups_ ? static_cast<size_t>(groupCount_) : 0};
}

// False when there are more groups than room; their number is then known.
bool SystemUser::FillGroups(int room) {
  groupCount_ = std::max(room, 1);
  groups_ = AllocArray<gid_t>(static_cast<u64>(groupCount_));
  if (!groups_) return true;
  const bool fits = getgrouplist(name_, account_.group, groups_.get(), &groupCount_) >= 0;
  if (!fits) groups_.reset();
  return fits;
}

}  // namespace qvx
