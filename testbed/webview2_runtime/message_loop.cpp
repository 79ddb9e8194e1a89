// Each task has a message-only window of its own, so that nothing is kept by thread.
#include "message_loop.h"

#include <memory>
#include <system_error>
#include <utility>

#include <windows.h>

#include "listener_window.h"

namespace webview2_runtime {
namespace {

/// Deletes itself when its window goes.
class PostedTask : public WindowListener {
  public:
    static void Post(std::function<void()> task) {
        auto owner = std::make_unique<PostedTask>(std::move(task));
        HWND window = MakeListenerWindow(HWND_MESSAGE, *owner);
        PostedTask* posted = owner.release(); // the window's from here on
        posted->window_ = window;
        if (PostMessageW(window, kListenerMessage, 0, 0) == FALSE) {
            const auto error = static_cast<int>(GetLastError());
            DestroyWindow(window);
            throw std::system_error(error, std::system_category());
        }
    }

    explicit PostedTask(std::function<void()> task) : task_(std::move(task)) {}

    void OnPosted() override {
        const auto task = std::move(task_);
        DestroyWindow(window_);
        task();
    }

    void OnDestroyed() override { delete this; }

  private:
    std::function<void()> task_;
    HWND window_ = nullptr;
};

} // namespace

void PostToMessageLoop(std::function<void()> task) {
    PostedTask::Post(std::move(task));
}

} // namespace webview2_runtime
