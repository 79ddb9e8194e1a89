// Why a login did not succeed, in words, put together from the library's trace.
#pragma once

#include <string>

#include "dp/merido_tracer.h"

namespace viewer {

/// Listens to the trace while it lives and keeps what explains a failure. One at a time in a process.
class OutcomeListener {
  public:
    OutcomeListener();
    ~OutcomeListener();
    OutcomeListener(const OutcomeListener&) = delete;
    OutcomeListener& operator=(const OutcomeListener&) = delete;

    /// One phrase: what ended the login, with the first failure that was traced.
    std::string Explain() const;

  private:
    static void OnTrace(void* context, const char* module, const char* component, dp::TraceType type,
                        const char* text);

    std::string status_;
    std::string failure_;
};

} // namespace viewer
