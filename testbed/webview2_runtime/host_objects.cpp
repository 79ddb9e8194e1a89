// Each message names a root, a path of properties from it, and whether the end of the path is called. The calls are those
// that objects without type information get: reading for each step, and calling what was read by its default member.
#include "host_objects.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "testbed/chromium/text.h"
#include "variant_value.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using nlohmann::json;
using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;

std::string ErrorText(const char* what, HRESULT result) {
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%s (0x%08lX)", what, static_cast<unsigned long>(result));
    return text.data();
}

/// What a step came to: a value, or why there is none.
struct Outcome {
    Variant value;
    std::string error;
};

class ExceptionInfo {
  public:
    ExceptionInfo() = default;
    ~ExceptionInfo() {
        SysFreeString(info_.bstrSource);
        SysFreeString(info_.bstrDescription);
        SysFreeString(info_.bstrHelpFile);
    }
    ExceptionInfo(const ExceptionInfo&) = delete;
    ExceptionInfo& operator=(const ExceptionInfo&) = delete;

    EXCEPINFO* Receive() { return &info_; }

  private:
    EXCEPINFO info_{};
};

Outcome Invoke(IDispatch* object, DISPID member, WORD flags, std::vector<VARIANTARG> arguments) {
    DISPPARAMS parameters{};
    parameters.rgvarg = arguments.data();
    parameters.cArgs = static_cast<UINT>(arguments.size());
    Outcome outcome;
    ExceptionInfo exception;
    UINT badArgument = 0;
    const HRESULT result = object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                          outcome.value.Receive(), exception.Receive(), &badArgument);
    if (FAILED(result)) {
        outcome.error = ErrorText("The host object refused.", result);
    }
    return outcome;
}

Outcome ReadProperty(IDispatch* object, const std::string& name) {
    std::wstring wide = ToUtf16(name);
    LPOLESTR text = wide.data();
    DISPID member = 0;
    const HRESULT result = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member);
    if (FAILED(result)) {
        return {{}, ErrorText("The host object has no such member.", result)};
    }
    return Invoke(object, member, DISPATCH_PROPERTYGET, {});
}

Outcome CallDefault(IDispatch* object, const json& values) {
    std::vector<Variant> owners;
    for (const json& value : values) {
        auto owner = VariantFromJson(value);
        if (!owner) {
            return {{}, "The host object cannot take such an argument."};
        }
        owners.push_back(std::move(*owner));
    }
    std::vector<VARIANTARG> arguments; // borrowed from the owners; the last one first
    arguments.reserve(owners.size());
    for (const Variant& owner : owners) {
        arguments.push_back(owner.Get());
    }
    std::reverse(arguments.begin(), arguments.end());
    return Invoke(object, DISPID_VALUE, DISPATCH_METHOD, std::move(arguments));
}

/// Follows the path from the object, which keeps the last one that it meets.
Outcome Perform(ComPtr<IDispatch> object, const json& request) {
    Outcome outcome;
    V_VT(outcome.value.Receive()) = VT_DISPATCH;
    object.CopyTo(&V_DISPATCH(outcome.value.Receive()));
    for (const json& step : request.at("path")) {
        if (!object) {
            return {{}, "The value before has no members."};
        }
        Outcome next = ReadProperty(object.Get(), step.get<std::string>());
        if (!next.error.empty()) {
            return next;
        }
        std::swap(*outcome.value.Receive(), *next.value.Receive());
        object = ObjectOf(outcome.value.Get());
    }
    if (!request.at("call").get<bool>()) {
        return outcome;
    }
    return object ? CallDefault(object.Get(), request.at("arguments"))
                  : Outcome{{}, "The value cannot be called."};
}

} // namespace

HRESULT HostObjects::Add(const std::wstring& name, const VARIANT& object) {
    IDispatch* dispatch = ObjectOf(object);
    if (V_VT(&object) == (VT_DISPATCH | VT_BYREF) && V_DISPATCHREF(&object) != nullptr) {
        dispatch = *V_DISPATCHREF(&object);
    }
    if (name.empty() || dispatch == nullptr) {
        return E_INVALIDARG;
    }
    ObjectRef owner = dispatch;
    named_[ToUtf8(name)].Swap(owner); // the earlier object goes when the map is as it will be
    return S_OK;
}

HRESULT HostObjects::Remove(const std::wstring& name) {
    const auto removed = named_.extract(ToUtf8(name));
    return removed.empty() ? E_INVALIDARG : S_OK;
}

void HostObjects::Clear() {
    const auto named = std::exchange(named_, {});
    const auto kept = std::exchange(kept_, {});
}

HostObjects::ObjectRef HostObjects::Root(const std::string& name, std::uint64_t handle) const {
    if (const auto kept = kept_.find(handle); kept != kept_.end()) {
        return kept->second;
    }
    const auto named = named_.find(name);
    return named == named_.end() ? nullptr : named->second;
}

std::uint64_t HostObjects::Keep(ObjectRef object) {
    ++lastHandle_;
    kept_[lastHandle_].Swap(object);
    return lastHandle_;
}

std::string HostObjects::Answer(const std::string& message) {
    const json request = json::parse(message);
    if (const auto document = request.at("document").get<std::string>(); document != document_) {
        document_ = document;
        const auto ofEarlierDocuments = std::exchange(kept_, {});
    }
    json reply = {{"id", request.at("id")}};
    const ObjectRef root = Root(request.value("name", ""), request.value("handle", std::uint64_t{0}));
    if (!root) {
        reply["error"] = "There is no such host object.";
        return reply.dump();
    }
    const Outcome outcome = Perform(root, request);
    if (!outcome.error.empty()) {
        reply["error"] = outcome.error;
    } else if (IDispatch* object = ObjectOf(outcome.value.Get())) {
        reply["handle"] = Keep(object);
    } else if (auto value = JsonFromVariant(outcome.value.Get())) {
        reply["value"] = std::move(*value);
    } else {
        reply["error"] = "The host object answered with a value that scripts cannot have.";
    }
    return reply.dump();
}

} // namespace webview2_runtime
