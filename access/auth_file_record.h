// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_AUTH_FILE_RECORD_H
#define QVX_ACCESS_AUTH_FILE_RECORD_H

#include <deque>
#include <string>
#include <string_view>
#include <utility>

#include "qvxcs/types.h"

#include "access/role.h"

namespace qvx {

// The characters between fields.
inline constexpr wchar_t kBlanks[] = L" \t";
inline constexpr wchar_t kAnyone[] = L"*";
inline constexpr wchar_t kAnyHost[] = L"*";
inline constexpr wchar_t kDomainPrefix[] = L"*.";
inline constexpr wchar_t kGroupPrefix = L'+';

enum class TrimMode { kLeft, kRight, kBoth };

// Without spaces and tabs at the ends named.
std::wstring TrimWhitespace(const std::wstring& text, TrimMode mode);

// Lower-case by the C library's `tolower`, which knows only 7-bit characters: others stay
// unchanged.
std::wstring LowerCase(std::wstring text);

// One line of the role map: users, hosts and a role, separated by blanks. Names of a field are
// separated by commas; what follows the role is not read.
class QVAuthFileRecord {
 public:
  // `line` without blanks at either end; `lineNumber` counts from 1, 0 is a built-in line.
  QVAuthFileRecord(std::wstring line, s32 lineNumber)
      : line_(std::move(line)), lineNumber_(lineNumber) {}
  virtual ~QVAuthFileRecord();
  QVAuthFileRecord(const QVAuthFileRecord&) = delete;
  QVAuthFileRecord& operator=(const QVAuthFileRecord&) = delete;

  // Appends an entry for each user on each host, user by user. Throws RoleMissingField and
  // RoleInvalidRole with the line's number.
  void PopulateQVXRoles();

  // The entries stay the record's.
  void GetRoles(std::deque<QVXRole*>& out) const { out = roles_; }
  s32 GetLineNumber() const { return lineNumber_; }

 private:
  void AppendRole(std::wstring_view user, std::wstring_view host, u32 privileges);

  std::wstring line_;
  s32 lineNumber_;
  // Owned. The suite's programs know these queues as queues of plain pointers, which GetRoles
  // copies and RolemapDeleteObject empties; a role that is being added has an owner until the queue
  // has it.
  std::deque<QVXRole*> roles_;
};

}  // namespace qvx

#endif
