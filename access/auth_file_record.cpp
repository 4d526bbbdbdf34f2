// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/auth_file_record.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <string_view>

#include "access/role_map_error.h"

namespace qvx {
namespace {

constexpr wchar_t kNameSeparator = L',';

struct RoleWord {
  std::wstring_view word;
  u32 privileges;
};

constexpr RoleWord kRoleWords[] = {
    {L"administrator", QVX_PRIV_ADMINISTRATOR},
    {L"poweruser", QVX_PRIV_POWERUSER},
    {L"user", QVX_PRIV_USER},
};

// Removes the next field from the line; several blanks are one separator. Empty when none is left.
std::wstring_view NextField(std::wstring_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  const std::wstring_view field = line.substr(0, line.find_first_of(kBlanks));
  line.remove_prefix(field.size());
  return field;
}

// Hands each name of the field to `use`. No name has blanks around it, because the field has none.
template <typename Use>
void ForEachName(std::wstring_view field, Use use) {
  // Deliberate: an empty name between, before or after commas is kept, and makes entries for the
  // empty user or host. Held by AuthFileRecord.AdjacentCommasKeepTheEmptyNameBetweenThem.
  for (size_t comma = 0; comma != std::wstring_view::npos;) {
    comma = field.find(kNameSeparator);
    use(field.substr(0, comma));
    if (comma != std::wstring_view::npos) field.remove_prefix(comma + 1);
  }
}

// A-Z only: in some locales the C library's table makes another letter of "I".
wchar_t Folded(wchar_t letter) { return letter >= L'A' && letter <= L'Z' ? letter + 32 : letter; }

bool IsRoleWord(std::wstring_view field, std::wstring_view word) {
  return std::equal(field.begin(), field.end(), word.begin(), word.end(),
                    [](wchar_t letter, wchar_t wanted) { return Folded(letter) == wanted; });
}

// QVX_PRIV_NONE for any other word.
u32 PrivilegesOf(std::wstring_view word) {
  for (const RoleWord& role : kRoleWords) {
    if (IsRoleWord(word, role.word)) return role.privileges;
  }
  return QVX_PRIV_NONE;
}

}  // namespace

std::wstring TrimWhitespace(const std::wstring& text, TrimMode mode) {
  std::wstring::size_type begin = 0;
  std::wstring::size_type end = text.size();
  if (mode != TrimMode::kLeft) end = text.find_last_not_of(kBlanks) + 1;  // npos + 1 is 0
  if (mode != TrimMode::kRight) begin = std::min(text.find_first_not_of(kBlanks), end);
  return text.substr(begin, end - begin);
}

std::wstring LowerCase(std::wstring text) {
  for (wchar_t& character : text) {
    if (character >= 0 && character <= 0x7F) {
      character = static_cast<wchar_t>(tolower(static_cast<int>(character)));
    }
  }
  return text;
}

QVAuthFileRecord::~QVAuthFileRecord() {
  std::for_each(roles_.begin(), roles_.end(), RolemapDeleteObject());
}

void QVAuthFileRecord::PopulateQVXRoles() {
  const auto line = static_cast<unsigned long>(lineNumber_);
  std::wstring_view rest = line_;
  const std::wstring_view users = NextField(rest);
  const std::wstring hosts = LowerCase(std::wstring(NextField(rest)));
  const std::wstring_view word = NextField(rest);
  if (word.empty()) throw QVXRoleMapFileReaderException(RoleMissingField, line);
  const u32 privileges = PrivilegesOf(word);
  if (privileges == QVX_PRIV_NONE) throw QVXRoleMapFileReaderException(RoleInvalidRole, line);
  ForEachName(users, [&](std::wstring_view user) {
    ForEachName(hosts, [&](std::wstring_view host) { AppendRole(user, host, privileges); });
  });
}

void QVAuthFileRecord::AppendRole(std::wstring_view user, std::wstring_view host, u32 privileges) {
  auto role = std::make_unique<QVXRole>();
  role->user = user;
  role->host = host;
  role->privileges = privileges;
  roles_.push_back(role.get());
  (void)role.release();
}

}  // namespace qvx
