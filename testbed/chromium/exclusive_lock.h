// A lock without a kernel object: the library's own mutex makes one when it is contended, and never closes it.
#pragma once

#include <windows.h>

namespace testbed::chromium {

/// Holds a lock for as long as it lives.
class ExclusiveLock {
  public:
    explicit ExclusiveLock(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    ~ExclusiveLock() { ReleaseSRWLockExclusive(&lock_); }
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;

  private:
    SRWLOCK& lock_;
};

} // namespace testbed::chromium
