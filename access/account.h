// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_ACCOUNT_H
#define QVX_ACCESS_ACCOUNT_H

#include <sys/types.h>

#include <optional>
#include <span>

#include "qvxcs/types.h"

#include "base/heap.h"

namespace qvx {

struct Account {
  uid_t user;
  gid_t group;  // the primary one
};

// False when the user database knows no such name, or cannot be queried.
bool FindAccount(const astring* name, Account* account);

// A heap copy of the name; empty when the database knows none, or without enough memory.
HeapArray<astring> NameOfUser(uid_t user);
HeapArray<astring> NameOfGroup(gid_t group);

// The group's number; nothing when the database knows no such name, or cannot be queried.
std::optional<gid_t> FindGroup(const astring* name);

// A user as the system knows it. The account and the groups are looked up when they are needed, and
// only once, because a user database may be on another machine. For use by the calling thread
// alone.
class SystemUser {
 public:
  // The name stays the caller's.
  explicit SystemUser(const astring* name) : name_(name) {}
  ~SystemUser() = default;
  SystemUser(const SystemUser&) = delete;
  SystemUser& operator=(const SystemUser&) = delete;

  const astring* Name() const { return name_; }
  bool IsKnown();
  bool IsSuperuser() { return IsKnown() && account_.user == 0; }

  // The user's groups in the system's order, the primary one among them. None for an unknown user,
  // or without enough memory.
  std::span<const gid_t> Groups();

 private:
  enum class Answer { kNotAsked, kNo, kYes };

  bool FillGroups(int room);

  const astring* name_;
  Answer known_ = Answer::kNotAsked;
  Account account_{};
  bool groupsAsked_ = false;
  HeapArray<gid_t> groups_;
  int groupCount_ = 0;
};

// Room for one entry of either database to begin with, and the most that is tried.
inline constexpr size_t kEntryRoom = 1024;
inline constexpr size_t kMaxEntryRoom = size_t{1} << 26;

}  // namespace qvx

#endif
