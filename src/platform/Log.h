// What every layer writes its diagnostic messages to. core/QuorvaLog stands behind it in the
// programs, a recording double in the tests.
#pragma once

#include <string_view>

namespace quorva {

enum class LogLevel { debug, info, notice, error };

/// The place in the source that a message comes from, filled in where the log is called.
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

/// Callable from any thread. Returns at once, never waits for a disk or another process, and does
/// not fail: what could not be logged is lost, and the log says so where it can.
class Log {
public:
    virtual ~Log() = default;

    virtual void write(LogLevel level, std::string_view message, QuorvaLogCategory category,
                       CallSite site) = 0;

    void debug(std::string_view message, QuorvaLogCategory category,
               CallSite site = CallSite::current()) {
        write(LogLevel::debug, message, category, site);
    }
    void info(std::string_view message, QuorvaLogCategory category,
              CallSite site = CallSite::current()) {
        write(LogLevel::info, message, category, site);
    }
    void notice(std::string_view message, QuorvaLogCategory category,
                CallSite site = CallSite::current()) {
        write(LogLevel::notice, message, category, site);
    }
    void error(std::string_view message, QuorvaLogCategory category,
               CallSite site = CallSite::current()) {
        write(LogLevel::error, message, category, site);
    }
};

} // namespace quorva
