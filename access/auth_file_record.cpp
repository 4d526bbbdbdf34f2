// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/auth_file_record.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <string_view>

#include "access/role_map_error.h"
#include "zsupt/zarn_tokenizer.h"

namespace qvx {
namespace {

using ZarnSupport::ZarnTokenizer;

constexpr wchar_t kNameSeparator[] = L",";

struct RoleWord {
  std::wstring_view word;
  u32 privileges;
};

constexpr RoleWord kRoleWords[] = {
    {L"administrator", QVX_PRIV_ADMINISTRATOR},
    {L"poweruser", QVX_PRIV_POWERUSER},
    {L"user", QVX_PRIV_USER},
};

// The next field: several blanks are one separator. Empty when there is none left.
std::wstring NextField(ZarnTokenizer& tokens) {
  std::wstring field;
  while (field.empty() && tokens.hasMoreTokens()) {
    field = TrimWhitespace(tokens.nextToken(), TrimMode::kBoth);
  }
  return field;
}

std::deque<std::wstring> NamesOf(const std::wstring& field) {
  std::deque<std::wstring> names;
  ZarnTokenizer tokens(field, kNameSeparator);
  while (tokens.hasMoreTokens()) {
    // Deliberate: an empty name between, before or behind commas is kept, and gives entries for the
    // empty user or host. Held by AuthFileRecord.AdjacentCommasKeepTheEmptyNameBetweenThem.
    names.push_back(TrimWhitespace(tokens.nextToken(), TrimMode::kBoth));
  }
  return names;
}

// A-Z only: in some locales the C library's table makes another letter of "I".
wchar_t Folded(wchar_t letter) { return letter >= L'A' && letter <= L'Z' ? letter + 32 : letter; }

bool IsRoleWord(const std::wstring& field, const std::wstring_view& word) {
  return std::equal(field.begin(), field.end(), word.begin(), word.end(),
                    [](wchar_t letter, wchar_t wanted) { return Folded(letter) == wanted; });
}

// QVX_PRIV_NONE for any other word.
u32 PrivilegesOf(const std::wstring& word) {
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
  if (line_.empty()) throw QVXRoleMapFileReaderException(RoleMissingField, line);
  ZarnTokenizer tokens(line_, kBlanks);
  const std::wstring users = NextField(tokens);
  if (!tokens.hasMoreTokens()) throw QVXRoleMapFileReaderException(RoleMissingField, line);
  const std::wstring hosts = LowerCase(NextField(tokens));
  if (!tokens.hasMoreTokens()) throw QVXRoleMapFileReaderException(RoleMissingField, line);
  const std::wstring word = NextField(tokens);
  if (word.empty()) throw QVXRoleMapFileReaderException(RoleMissingField, line);
  const u32 privileges = PrivilegesOf(word);
  if (privileges == QVX_PRIV_NONE) throw QVXRoleMapFileReaderException(RoleInvalidRole, line);
  const std::deque<std::wstring> hostNames = NamesOf(hosts);
  for (const std::wstring& user : NamesOf(users)) {
    for (const std::wstring& host : hostNames) {
      AppendRole(user, host, privileges);
    }
  }
}

void QVAuthFileRecord::AppendRole(const std::wstring& user, const std::wstring& host,
                                  u32 privileges) {
  auto role = std::make_unique<QVXRole>(QVXRole{user, host, privileges});
  roles_.push_back(role.get());
  (void)role.release();
}

}  // namespace qvx
