// One property of the options object: a flag or an enumerator.
#pragma once

#include <windows.h>

namespace webview2_detail {

template <typename Value>
class ValueOption {
  public:
    explicit ValueOption(Value value) : value_(value) {}

    HRESULT Get(Value* value) const {
        if (value == nullptr) {
            return E_POINTER;
        }
        *value = value_;
        return S_OK;
    }

    HRESULT Put(Value value) {
        value_ = value;
        return S_OK;
    }

  private:
    Value value_;
};

} // namespace webview2_detail
