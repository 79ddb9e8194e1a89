// The order of reading and changing cookies: Chromium works on them in several places at once, and what is read is to show
// what was changed before.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace testbed::chromium {

class CookieOrder {
  public:
    void BeginChange() { ++changes_; }

    /// A change is done, or has failed. Calls the reads that wait for the last one.
    void EndChange() {
        if (--changes_ == 0) {
            for (const auto& read : std::exchange(reads_, {})) {
                read();
            }
        }
    }

    /// Calls `read` once all changes are done, which may be at once.
    void Read(std::function<void()> read) {
        if (changes_ == 0) {
            read();
        } else {
            reads_.push_back(std::move(read));
        }
    }

    /// Drops what still waits.
    void Clear() { const auto dropped = std::exchange(reads_, {}); }

  private:
    int changes_ = 0; // that are not done yet
    std::vector<std::function<void()>> reads_;
};

} // namespace testbed::chromium
