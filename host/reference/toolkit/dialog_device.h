// A dialog as a device: its window with the components in it, its actions, its modal life.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/action_handlers.h"
#include "toolkit/dialog_description.h"
#include "toolkit/icon_file.h"
#include "toolkit/input_lock.h"
#include "toolkit/modal_loop.h"

namespace host_reference {

/// New values of attributes; null and 0 leave one as it is.
struct DialogAttributes {
    const wchar_t* title = nullptr;
    int width = 0;
    int height = 0;
};

/// Always held by shared pointers. The registry holds one until the device is destroyed, and so does each call of a member
/// that calls out, and each message: any of them may be the one that destroys it.
///
/// All results are those of results.h.
class DialogDevice : public std::enable_shared_from_this<DialogDevice> {
  public:
    explicit DialogDevice(DialogDescription description);

    int Modify(const DialogAttributes& attributes);

    /// @return null for an action that there is not.
    ActionHandlers* Handlers(int action) noexcept;

    /// Makes the windows. Where the system refuses one, none is left.
    int Manage();

    /// Runs the dialog modally over its owner. It may be activated again afterwards.
    int Activate();

    /// Ends `Activate`. A dialog that is not active has nothing to end: refused, and a later `Activate` is not affected.
    int Exit() noexcept;

    /// Calls the handlers of the destroy action, gives the owner its input back, and destroys the windows. Does nothing
    /// where that is under way.
    void Destroy();

    /// @return null before `Manage` and once it has been destroyed.
    HWND Window() const noexcept { return window_; }

    bool HasComponent(std::string_view name) const noexcept;

    /// @return null where there is no such window, or none at present.
    HWND ComponentWindow(std::string_view name) const noexcept;

  private:
    struct Component {
        WindowDescription description;
        HWND window = nullptr;
    };

    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);

    bool CreateWindows();
    void SetIcons();
    void LayOut();
    void Resize(int width, int height);

    void OnClose();
    void OnSize();
    void OnDeactivate() noexcept;
    void TakeFocus() const;
    void ForgetComponent(HWND window) noexcept;
    void ForgetWindow() noexcept;

    void CentreOver(HWND owner) const;
    void BeginDestruction();
    void ReleaseOwner();
    void CallHandlers(const ActionHandlers& handlers) const;

    const DialogDescription description_;
    std::wstring title_;
    int width_ = 400; ///< Of the window that will be made.
    int height_ = 300;

    ActionHandlers closeHandlers_;
    ActionHandlers resizeHandlers_;
    ActionHandlers destroyHandlers_;

    HWND window_ = nullptr;
    std::vector<Component> components_; ///< As in the description.
    UniqueIcon largeIcon_;
    UniqueIcon smallIcon_;
    SIZE client_ = {};            ///< The size that it is laid out for.
    HWND lastFocused_ = nullptr;  ///< Had the focus when the window was last deactivated; may be gone.
    bool managed_ = false;        ///< All of its windows have been made.
    bool beingDestroyed_ = false; ///< The handlers for that have been called, or are now.

    ModalLoop loop_;
    bool active_ = false; ///< `Activate` is on the stack.
    HWND owner_ = nullptr;
    std::unique_ptr<InputLock> ownerLock_;
};

} // namespace host_reference
