// The library's trace lines: one tracer a component, all under the module name "kelda".
#pragma once

#include "dp/merido_tracer.h"

namespace kelda {

/// Makes trace lines of one component. The line is written at the end of the full expression that streams into it.
class ComponentTrace {
  public:
    explicit constexpr ComponentTrace(const char* component) : component_(component) {}

    dp::TraceFormatter Info() const { return Line(dp::TraceType::Information); }
    dp::TraceFormatter Warning() const { return Line(dp::TraceType::Warning); }
    dp::TraceFormatter Failure() const { return Line(dp::TraceType::Failure); }

  private:
    dp::TraceFormatter Line(dp::TraceType type) const { return dp::MeridoTracer("kelda", component_)(type); }

    const char* component_;
};

inline constexpr ComponentTrace kBasicAuthenticationTrace{"ZanBasicAuthentication"};
inline constexpr ComponentTrace kFormBasedAuthenticationTrace{"ZanFormBasedAuthentication"};
inline constexpr ComponentTrace kWebBrowserEdgeTrace{"ZanWebBrowserEdge"};
inline constexpr ComponentTrace kWebBrowserIETrace{"ZanWebBrowserIE"};

} // namespace kelda
