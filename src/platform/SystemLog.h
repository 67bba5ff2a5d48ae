// The operating system's own log.
#pragma once

#include "platform/Log.h"

#include <string_view>

namespace quorva {

class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// Sends one message, readable by everybody who may read the log. May wait for the log service;
    /// ignores failures. Callable from any thread.
    virtual void send(LogLevel level, std::string_view message, QuorvaLogCategory category,
                      CallSite site) = 0;
};

} // namespace quorva
