// What a device calls back for one action.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "ui/ui.h"

namespace host_reference {

struct ActionHandler {
    UiCallback callback;
    void* context;
};

/// The list is never changed but replaced: a handler may add and set handlers, or destroy the device, while a list is being
/// gone through.
class ActionHandlers {
  public:
    using List = std::shared_ptr<const std::vector<ActionHandler>>;

    bool Empty() const noexcept { return list_ == nullptr; }

    /// The handlers of now. What is called next does not change it.
    List Current() const noexcept { return list_; }

    /// The same, and none are left.
    List Take() noexcept { return std::exchange(list_, nullptr); }

    /// Both may throw std::bad_alloc.
    void Add(ActionHandler handler) {
        auto handlers = list_ ? *list_ : std::vector<ActionHandler>();
        handlers.push_back(handler);
        list_ = std::make_shared<const std::vector<ActionHandler>>(std::move(handlers));
    }
    void Set(ActionHandler handler) {
        list_ = std::make_shared<const std::vector<ActionHandler>>(1, handler);
    }

  private:
    List list_;
};

} // namespace host_reference
