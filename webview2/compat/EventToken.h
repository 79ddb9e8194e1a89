// The SDK's spelling of a header that this compiler has in lower case.
#pragma once

#include <eventtoken.h>
