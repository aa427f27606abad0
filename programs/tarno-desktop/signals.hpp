#pragma once

#include <functional>
#include <memory>

#include "common/event_loop.hpp"

namespace desktop {

using program::EventSource;

/// Calls `end` on SIGTERM, SIGINT and SIGHUP, and `ask` on SIGUSR1. From now on the process neither dies of
/// these nor of SIGPIPE: a reader of standard error or a display may go away. Call before any thread starts.
/// Throws std::system_error when the system has no descriptor left.
std::unique_ptr<EventSource> watchSignals(std::function<void()> end, std::function<void()> ask);

}  // namespace desktop
