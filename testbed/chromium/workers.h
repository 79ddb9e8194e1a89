// The workers of a page: what Chromium tells about their requests it tells partly in sessions of their own.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "testbed/chromium/connection.h"

namespace testbed::chromium {

class Workers {
  public:
    explicit Workers(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Parameters of the Target.setAutoAttach that has the workers of a page, or of a worker, wait for `Add`.
    static Json Attachment();

    /// Lets a worker run. What its session tells about its requests and about workers of its own goes to `page`.
    ///
    /// @param attached parameters of Target.attachedToTarget.
    void Add(const Json& attached, const std::weak_ptr<EventSink>& page);

    /// @param detached parameters of Target.detachedFromTarget.
    void Remove(const Json& detached);

  private:
    std::shared_ptr<Connection> connection_;
    std::map<std::string, std::shared_ptr<EventSink>> sinks_; // by session
};

} // namespace testbed::chromium
