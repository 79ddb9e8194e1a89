// Tracing, for a native build in which nobody reads the trace.
#pragma once

#include <string>

namespace dp {

enum class TraceType : int { Information = 0, Warning = 2, Failure = 3 };

class TraceFormatter {
  public:
    TraceFormatter& operator<<(const std::string& text) {
        line_ += text;
        return *this;
    }

  private:
    std::string line_;
};

class MeridoTracer {
  public:
    MeridoTracer(const char* /*module*/, const char* /*component*/) {}

    TraceFormatter operator()(TraceType /*type*/) const { return {}; }
};

} // namespace dp
