// Objects that work on the page of a web view: closing the web view takes the page from under them all.
#pragma once

#include <memory>
#include <utility>

#include "com_object.h"
#include "testbed/chromium/page.h"

namespace webview2_runtime {

struct PageSlot {
    std::unique_ptr<testbed::chromium::Page> page; ///< null before the page is there, and once it is closed
};
using SharedPage = std::shared_ptr<PageSlot>;

/// A `ComObject` whose methods need the page. It may outlive its web view: then they answer `ClosedError`.
template <typename Base, typename... Interfaces>
class PageObject : public ComObject<Base, Interfaces...> {
  protected:
    explicit PageObject(SharedPage slot) : slot_(std::move(slot)) {}

    const SharedPage& Slot() const { return slot_; }
    bool IsClosed() const { return slot_->page == nullptr; }

    /// Runs the body of a method with the page, while there is one.
    template <typename Body>
    HRESULT WithPage(Body&& body) const noexcept {
        return this->Guarded([&]() -> HRESULT { return IsClosed() ? ClosedError() : body(*slot_->page); });
    }

  private:
    SharedPage slot_;
};

} // namespace webview2_runtime
