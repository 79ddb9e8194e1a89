// Substring test on the implementation variable.
#include "support/implementation_words.h"

#include <string>

#include "dp/environment.h"

namespace kelda {

bool ImplementationWordGiven(std::string_view word) {
    return dp::Environment::Get("MERIDO_ZANWEBBROWSER_IMPLEMENTATION").find(word) != std::string::npos;
}

} // namespace kelda
