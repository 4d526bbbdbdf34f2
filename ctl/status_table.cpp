// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/status_table.h"

#include "qvxcs/status.h"

namespace qvx::ctl {
namespace {

constexpr u32 kMinusOne = 0xFFFFFFFF;

#define ENTRY(name) name, #name
constexpr StatusEntry kEntries[] = {
    {ENTRY(SM_STATUS_SUCCESS), "the call succeeded", "nothing", kYes},
    {ENTRY(SM_STATUS_BAD_ARGUMENT), "a required argument is missing or out of range",
     "check the names, the type and the sizes that were given", kNo},
    {ENTRY(SM_STATUS_TIMEOUT), "a wait ended before what it waited for came",
     "try again; `qvxctl lock` shows who holds the lock", kUnknown},
    {ENTRY(SM_STATUS_FILE_OPEN_FAILED), "the INI file cannot be opened",
     "check that the path is a regular file and who may read or write it", kUnknown},
    {ENTRY(SM_STATUS_LOCK_FAILED), "the suite's file lock could not be taken",
     "`qvxctl lock` shows who holds it; `qvxctl doctor` checks the lock file", kUnknown},
    {ENTRY(SM_STATUS_SIZE_REQUIRED), "the room for the replaced text is missing or too small",
     "call again with the size that was written back", kNo},
    {ENTRY(SM_STATUS_BUFFER_TOO_SMALL), "the room for the result is too small",
     "call again with the size that was written back, where the call gives it", kNo},
    {ENTRY(SM_STATUS_NOT_LOADED), "IP support is not loaded",
     "the library is not attached: `qvxctl doctor` shows why", kUnknown},
    {ENTRY(SM_STATUS_WRITE_FAILED), "writing failed",
     "check the free space, the quota and the file system", kUnknown},
    {ENTRY(SM_STATUS_FAILURE), "a system call failed or a look-up found nothing",
     "check the file or name that was asked for", kUnknown},
    {ENTRY(SM_STATUS_BAD_DATA), "the data is damaged or cannot be converted",
     "of a log: `qvxctl log repair`; of a directory: it is not empty", kNo},
    {ENTRY(SM_STATUS_FILE_CREATE_FAILED), "a file could not be made or moved into place",
     "check the directory's rights and the free space", kUnknown},
    {ENTRY(SM_STATUS_FILE_OPEN_ERROR), "the key=value file or its copy cannot be opened",
     "the file must exist and its directory be writable", kUnknown},
    {ENTRY(SM_STATUS_BAD_SECTION_HEADER), "a line begins with \"[\" and has no \"]\"",
     "`qvxctl ini lint FILE` shows the line", kNo},
    {ENTRY(SM_STATUS_SECTION_NOT_FOUND), "the INI file has no such section",
     "`qvxctl ini list FILE` shows its sections; case and blanks count", kNo},
    {ENTRY(SM_STATUS_KEY_NOT_FOUND), "there is no such key",
     "`qvxctl ini list FILE SECTION` or `qvxctl conf list FILE` shows the keys; case and blanks "
     "count",
     kNo},
    {ENTRY(SM_STATUS_DATA_TOO_LARGE), "the value does not fit its type, its room or its line",
     "check the value against the type's limits", kNo},
    {ENTRY(SM_STATUS_FILE_DELETE_FAILED), "the file could not be replaced",
     "check the directory's rights, and that the file is no mount point", kUnknown},
    {ENTRY(SM_STATUS_INVALID_PARAMETER), "an argument is missing, out of range or no such number",
     "check the arguments", kNo},
    {ENTRY(SM_STATUS_NO_MEMORY), "memory ran out", "free memory or raise the limit", kUnknown},
    {ENTRY(SM_STATUS_IP_INVALID_PARAMETER), "the address text of an IP test is missing",
     "give an address", kNo},
    {kMinusOne, "-1", "the call failed without a status of its own",
     "check the file's directory, its rights and the free space", kUnknown},
};
#undef ENTRY

constexpr StatusEntry kNoStatus = {0, "no status of the library", "the value is not in the list",
                                   "`man qvxcs_status` lists the statuses", kUnknown};

}  // namespace

const StatusEntry& EntryOfStatus(u32 value) {
  for (const StatusEntry& entry : kEntries) {
    if (entry.value == value) return entry;
  }
  return kNoStatus;
}

bool IsStatus(u32 value) { return &EntryOfStatus(value) != &kNoStatus; }

}  // namespace qvx::ctl
