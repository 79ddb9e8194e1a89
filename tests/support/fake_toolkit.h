// The host's UI toolkit as the login dialog sees it: one device without a window, whose calls are recorded and whose user is
// played by the test.
#pragma once

#include <cstdarg>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

#include "du/string_utilities.h"
#include "testbed/support/import_patch.h"
#include "tests/support/replaced_import.h"
#include "tests/support/transcript.h"
#include "ui/ui.h"

namespace test_support {

/// Takes the place of the toolkit's functions in the test program, all of which it has to import. In the transcript the
/// name of the login dialog's device reads "device". There may be one at a time.
class FakeToolkit {
  public:
    FakeToolkit() : modify_(Patch(reinterpret_cast<void*>(&Modify))) {
        current = this;
        if (modify_ == nullptr) {
            throw std::invalid_argument("ui_modify is not imported");
        }
    }
    ~FakeToolkit() {
        Patch(modify_);
        current = nullptr;
    }
    FakeToolkit(const FakeToolkit&) = delete;
    FakeToolkit& operator=(const FakeToolkit&) = delete;

    /// Answers other than those that the state of the device gives, by the name of the function.
    std::map<std::string, int> answers;

    /// What happens inside a call; inside "ui_activate_device" it is what the user and the page do.
    std::map<std::string, std::function<void()>> during;

    /// The handler's answers, once each has been called.
    std::vector<int> handlerAnswers;

    /// The description that the device was made from last.
    std::string description;

    HWND window = reinterpret_cast<HWND>(0x4711);

    bool DeviceExists() const { return exists_; }

    /// Calls the handlers of an action, as the toolkit does when it has occurred.
    void Raise(int action) {
        for (const Handler& handler : std::vector<Handler>(handlers_[action])) {
            handlerAnswers.push_back(handler.callback(handler.context));
        }
    }

    /// What the toolkit does when a device goes, for whatever reason: its end is told once.
    void DestroyDevice() {
        if (exists_) {
            exists_ = false;
            Raise(kUiActionDestroy);
            handlers_.clear();
        }
    }

  private:
    struct Handler {
        UiCallback callback;
        void* context;
    };
    static constexpr const char* kLibrary = "host_toolkit.dll";
    static constexpr int kUnknown = 1;
    static constexpr int kNameTaken = 5;

    static void* Patch(void* function) {
        return testbed::PatchImport(GetModuleHandleW(nullptr), kLibrary, "ui_modify", function);
    }

    static std::string Named(const char* name) {
        return name == std::string("FormBasedAuthenticationDialog") ? " device" : std::string(" ") + name;
    }

    int Call(const std::string& function, const std::string& arguments) {
        Record(function + arguments);
        const int present = exists_ ? 0 : kUnknown;
        if (const auto happening = during.find(function); happening != during.end()) {
            happening->second();
        }
        const auto answer = answers.find(function);
        return answer != answers.end() ? answer->second : present;
    }

    // The name of a device that exists is taken; that device is not touched.
    int Create(const std::string& arguments, const char* text) {
        const std::string function = "ui_create_device_from_string";
        if (exists_) {
            Record(function + arguments);
            return kNameTaken;
        }
        description = text;
        exists_ = answers.count(function) == 0;
        return Call(function, arguments);
    }

    // Every value but the title's is a number.
    static int Modify(const char* device, const char* component, ...) {
        std::string arguments = Named(device) + Named(component);
        va_list list{};
        va_start(list, component);
        for (int code = va_arg(list, int); code != 0; code = va_arg(list, int)) {
            arguments += " " + std::to_string(code) + "=";
            arguments += code == kUiAttributeTitle
                             ? '"' + du::WideStrToUtf8(va_arg(list, const wchar_t*)) + '"'
                             : std::to_string(va_arg(list, int));
        }
        va_end(list);
        return current->Call("ui_modify", arguments + " 0");
    }

    int AddHandler(const std::string& function, const std::string& arguments, int action, Handler handler) {
        handlers_[action].push_back(handler);
        return Call(function, arguments + " " + std::to_string(action));
    }

    static inline FakeToolkit* current = nullptr;
    void* modify_;
    bool exists_ = false;
    std::map<int, std::vector<Handler>> handlers_;

    ReplacedImport<struct ToolkitCreate, decltype(ui_create_device_from_string)> create_{
        kLibrary, "ui_create_device_from_string",
        [this](const char* device, const char* dialog, const char* text) {
            return Create(Named(device) + Named(dialog), text);
        }};
    ReplacedImport<struct ToolkitAdd, decltype(ui_add_action)> add_{
        kLibrary, "ui_add_action",
        [this](const char* device, const char* component, int action, UiCallback callback, void* context,
               int end) {
            EXPECT_EQ(end, 0);
            return AddHandler("ui_add_action", Named(device) + Named(component), action, {callback, context});
        }};
    ReplacedImport<struct ToolkitSet, decltype(ui_set_action)> set_{
        kLibrary, "ui_set_action",
        [this](const char* device, const char* component, int action, UiCallback callback, void* context,
               int end) {
            EXPECT_EQ(end, 0);
            handlers_[action].clear();
            return AddHandler("ui_set_action", Named(device) + Named(component), action, {callback, context});
        }};
    ReplacedImport<struct ToolkitManage, decltype(ui_manage_device)> manage_{
        kLibrary, "ui_manage_device",
        [this](const char* device) { return Call("ui_manage_device", Named(device)); }};
    ReplacedImport<struct ToolkitOperation, decltype(ui_do_operation)> operation_{
        kLibrary, "ui_do_operation",
        [this](const char* device, const char* component, int operation, int input, void* output, int end) {
            const int result =
                Call("ui_do_operation", Named(device) + Named(component) + " " + std::to_string(operation) +
                                            " " + std::to_string(input) + " " + std::to_string(end));
            if (result == 0) {
                *static_cast<HWND*>(output) = window;
            }
            return result;
        }};
    ReplacedImport<struct ToolkitActivate, decltype(ui_activate_device)> activate_{
        kLibrary, "ui_activate_device",
        [this](const char* device) { return Call("ui_activate_device", Named(device)); }};
    ReplacedImport<struct ToolkitExit, decltype(ui_exit_device)> exit_{
        kLibrary, "ui_exit_device", [this](const char* device, int result) {
            return Call("ui_exit_device", Named(device) + " " + std::to_string(result));
        }};
    ReplacedImport<struct ToolkitDestroy, decltype(ui_destroy_device)> destroy_{
        kLibrary, "ui_destroy_device", [this](const char* device) {
            const int result = Call("ui_destroy_device", Named(device));
            DestroyDevice();
            return result;
        }};
};

} // namespace test_support
