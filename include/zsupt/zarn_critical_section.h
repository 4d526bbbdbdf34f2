// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef ZSUPT_ZARN_CRITICAL_SECTION_H
#define ZSUPT_ZARN_CRITICAL_SECTION_H

#include <mutex>

namespace ZarnSupport {

// A lock, as a member or as a base class. Its holder may take it again.
class ZarnCriticalSectionObject {
 public:
  ZarnCriticalSectionObject() = default;
  ZarnCriticalSectionObject(const ZarnCriticalSectionObject&) = delete;
  ZarnCriticalSectionObject& operator=(const ZarnCriticalSectionObject&) = delete;

  void enter();
  void leave();

 protected:
  ~ZarnCriticalSectionObject() = default;

 private:
  std::recursive_mutex mutex_;
};

// Holds the lock from here to the end of the scope, whichever way the scope is left.
class ZarnCriticalSection {
 public:
  explicit ZarnCriticalSection(ZarnCriticalSectionObject& object) : object_(object) {
    object_.enter();
  }
  ~ZarnCriticalSection() { object_.leave(); }
  ZarnCriticalSection(const ZarnCriticalSection&) = delete;
  ZarnCriticalSection& operator=(const ZarnCriticalSection&) = delete;

 private:
  ZarnCriticalSectionObject& object_;
};

}  // namespace ZarnSupport

#endif
