// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/auth_file_reader.h"

#include <sys/stat.h>

#include <utility>

#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"

namespace qvx {
namespace {

using ZarnSupport::ZarnCriticalSection;

constexpr mode_t kMode = S_IFREG | 0640;
constexpr mode_t kStickyMode = S_IFREG | S_ISVTX | 0640;

constexpr const wchar_t* kDefaultLines[] = {
    L"root \t* \tadministrator",
    L"+root \t* \tpoweruser",
    L"* \t* \tuser",
};

constexpr wchar_t kCommentMark = L'#';

}  // namespace

void QVAuthFileRecords::Append(std::wstring line, s32 lineNumber) {
  auto record = std::make_unique<QVAuthFileRecord>(std::move(line), lineNumber);
  record->PopulateQVXRoles();
  list_.push_back(record.get());
  (void)record.release();
}

void QVAuthFileRecords::Clear() {
  for (const QVAuthFileRecord* record : list_) {
    delete record;
  }
  list_.clear();
}

QVAuthFileReader& QVAuthFileReader::GetInstance() {
  static QVAuthFileReader* const reader = new QVAuthFileReader;
  return *reader;
}

void QVAuthFileReader::DeleteInstance() { delete &GetInstance(); }

QVAuthFileReader::~QVAuthFileReader() {
  const ZarnCriticalSection section(*this);
  records_.Clear();
  stream_.reset();
}

void QVAuthFileReader::Open() {
  const ZarnCriticalSection section(*this);
  CheckFilePermissions();
  if (!loaded_) OpenStream();
}

void QVAuthFileReader::OpenDraft() {
  const ZarnCriticalSection section(*this);
  OpenStream();
}

void QVAuthFileReader::OpenStream() {
  if (!stream_) stream_ = std::make_unique<RoleMapStream>();
  // Deliberate: a fault leaves the stream open where reading stopped, so this second open fails and
  // every later reading finds no records, even after the file has been corrected. A second open
  // before the first reading has the same effect. The default records stay in force until the
  // process ends. Held by AuthFileReader.AfterABadRoleEveryLaterOpenAndReadFindsNoRecords.
  stream_->Open(path_);
  if (!stream_->IsOpen()) throw QVXRoleMapFileReaderException(RoleFileOpenFailed, 0);
}

void QVAuthFileReader::CheckFilePermissions() {
  struct stat status {};
  if (stat(path_.c_str(), &status) != 0) {
    throw QVXRoleMapFileReaderException(RoleFileOpenFailed, 0);
  }
  if (status.st_mode != kMode && status.st_mode != kStickyMode) {
    throw QVXRoleMapFileReaderException(RoleBadPermissions, 0);
  }
  if (status.st_mtime == lastModification_) return;
  // Deliberate: the time counts as seen before the file is open. One that cannot be opened, because
  // the process may not read it or has no descriptor left, is read once its time changes. Held by
  // UserRights.AFileThatCouldNotBeOpenedIsReadOnceItsTimeChanges.
  lastModification_ = status.st_mtime;
  loaded_ = false;
  QVXRoleMapAlgorithm::GetInstance().ForgetInitialized();
}

std::deque<QVAuthFileRecord*>& QVAuthFileReader::GetRecords() {
  const ZarnCriticalSection section(*this);
  // Deliberate: the default records that a login puts here count as loaded until the file's time
  // changes. Held by
  // AuthFileReader.DefaultRecordsStandInForLoadedOnesUntilTheTimeChanges.
  if (loaded_) return records_.List();
  records_.Clear();
  defaultsStand_ = false;
  if (!stream_) throw QVXRoleMapFileReaderException(RoleFileOpenFailed, 0);
  try {
    ReadRecords();
  } catch (const QVXRoleMapFileReaderException&) {
    throw;
  } catch (...) {
    // Deliberate: without enough memory the reading never continues, because the rest of the file
    // would be taken for the whole file; the default records stay in force until the process ends.
    // Held by UserRights.WithoutMemoryNoPartOfTheRoleMapIsTakenForTheWhole.
    StopReading();
    throw;
  }
  if (records_.List().empty()) throw QVXRoleMapFileReaderException(RoleNoRecords, 0);
  stream_.reset();
  loaded_ = true;
  return records_.List();
}

void QVAuthFileReader::ReadRecords() {
  std::wstring line;
  for (u32 number = 1; stream_->GetLine(line); ++number) {
    std::wstring trimmed = TrimWhitespace(line, TrimMode::kBoth);
    if (trimmed.empty() || trimmed.front() == kCommentMark) continue;
    records_.Append(std::move(trimmed), static_cast<s32>(number));
  }
}

std::deque<QVAuthFileRecord*>& QVAuthFileReader::GetDefaultRecords() {
  const ZarnCriticalSection section(*this);
  if (defaultsStand_) return records_.List();
  QVAuthFileRecords defaults;
  for (const wchar_t* line : kDefaultLines) {
    defaults.Append(line, 0);
  }
  records_.Swap(defaults);
  defaultsStand_ = true;
  return records_.List();
}

void QVAuthFileReader::StopReading() {
  const ZarnCriticalSection section(*this);
  if (stream_) stream_->Fail();
}

}  // namespace qvx
