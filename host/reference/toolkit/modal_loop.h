// The message loop of a modal dialog, which can be ended from anywhere within it.
#pragma once

namespace host_reference {

/// Belongs to one thread.
class ModalLoop {
  public:
    /// Dispatches the messages of all windows of the thread until `End` has been called or the thread is asked to quit;
    /// that request is passed on to the loop outside. Returns at once if `End` has been called since `Start`.
    void Run() const;

    /// Forgets earlier calls of `End`.
    void Start() noexcept { ended_ = false; }

    /// Lets `Run` return when the thread comes back to it, however deep in it the caller is.
    void End() noexcept { ended_ = true; }

  private:
    bool DispatchWaiting() const;

    bool ended_ = true;
};

} // namespace host_reference
