// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/account.h"

#include <grp.h>
#include <pwd.h>

#include <cerrno>

namespace qvx {
namespace {

// Asks with more and more room until the entry fits; its texts lie in `room`.
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

}  // namespace qvx
