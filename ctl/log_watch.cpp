// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_watch.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cstring>
#include <ctime>

namespace qvx::ctl {
namespace {

constexpr u32 kChanges = IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
// For arrivals that were not reported.
constexpr u64 kMany = 1000;

}  // namespace

LogWatch::LogWatch(const std::string& path)
    : events_(AboveStandard(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))) {
  const size_t slash = path.rfind('/');
  directory_ = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  name_ = slash == std::string::npos ? path : path.substr(slash + 1);
  Add();
}

void LogWatch::Add() {
  isAdded_ = events_ && inotify_add_watch(events_.Number(), directory_.c_str(), kChanges) >= 0;
}

void LogWatch::Wait(const sigset_t* signals) {
  const timespec limit{hasChanged_ ? 0 : 1, 0};
  pollfd ready{events_.Number(), POLLIN, 0};
  (void)ppoll(&ready, events_ ? 1 : 0, &limit, signals);
  ReadEvents();
  hasChanged_ = false;
  if (!isAdded_) Add();
}

std::optional<u64> LogWatch::Arrivals() {
  ReadEvents();
  if (!isAdded_) return std::nullopt;
  return arrivals_;
}

void LogWatch::ReadEvents() {
  alignas(inotify_event) char room[4096];
  for (;;) {
    const ssize_t got = events_ ? read(events_.Number(), room, sizeof(room)) : 0;
    if (got <= 0) return;
    hasChanged_ = true;
    for (size_t at = 0; at < static_cast<size_t>(got);) {
      inotify_event event;
      memcpy(&event, room + at, sizeof(event));
      Note(event, room + at + sizeof(event));
      at += sizeof(event) + event.len;
    }
  }
}

void LogWatch::Note(const inotify_event& event, const char* name) {
  if ((event.mask & IN_Q_OVERFLOW) != 0) arrivals_ += kMany;
  if ((event.mask & IN_IGNORED) != 0) {
    isAdded_ = false;
    arrivals_ += kMany;
  }
  const bool isArrival = (event.mask & (IN_CREATE | IN_MOVED_TO)) != 0;
  if (isArrival && event.len != 0 && name_ == name) ++arrivals_;
}

}  // namespace qvx::ctl
