// The interface for diagnostic messages. log/QuorvaLog implements it in the programs, and a
// recording fake in the tests.
#pragma once

#include "base/Printable.h"

#include <string_view>

namespace quorva {

enum class LogLevel { debug, info, notice, error };

/// The source line of a message, filled in at the call of the log.
struct CallSite {
    const char* file;
    int line;

    static constexpr CallSite current(const char* file = __builtin_FILE(),
                                      int line = __builtin_LINE()) {
        return {file, line};
    }
};

/// The part of the program that a message is about.
struct QuorvaLogCategory {
    std::string_view category;
};

namespace logCategory {
inline constexpr QuorvaLogCategory appState{"appState"};
inline constexpr QuorvaLogCategory participant{"participant"};
inline constexpr QuorvaLogCategory calendar{"calendar"};
inline constexpr QuorvaLogCategory notification{"notification"};
} // namespace logCategory

/// Callable from any thread. Never waits for a disk or another process, and never fails: a message
/// that cannot be logged is lost, and the log says so where it can.
class Log {
public:
    virtual ~Log() = default;

    virtual void write(LogLevel level, const Printable& message, QuorvaLogCategory category,
                       CallSite site) = 0;

    void debug(const Printable& message, QuorvaLogCategory category,
               CallSite site = CallSite::current()) {
        write(LogLevel::debug, message, category, site);
    }
    void info(const Printable& message, QuorvaLogCategory category,
              CallSite site = CallSite::current()) {
        write(LogLevel::info, message, category, site);
    }
    void notice(const Printable& message, QuorvaLogCategory category,
                CallSite site = CallSite::current()) {
        write(LogLevel::notice, message, category, site);
    }
    void error(const Printable& message, QuorvaLogCategory category,
               CallSite site = CallSite::current()) {
        write(LogLevel::error, message, category, site);
    }
};

} // namespace quorva
