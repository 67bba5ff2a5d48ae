// The logging facade: every message goes to the system's log and, as one line, to the log file.
#pragma once

#include "base/MainLoop.h"
#include "base/SerialQueue.h"
#include "log/FileLogMirror.h"
#include "platform/Log.h"
#include "platform/SystemLog.h"

#include <atomic>
#include <memory>

namespace quorva {

/// Callable from any thread, but for construction, bootstrap and destruction (main thread). The
/// caller's part is to build the line; both logs are written on one serial queue.
class QuorvaLog final : public Log {
public:
    /// The services must outlive the log. Messages reach the system's log from now on.
    QuorvaLog(const MainLoop& loop, SystemLog& systemLog);

    /// Writes out what is still waiting.
    ~QuorvaLog() override;

    QuorvaLog(const QuorvaLog&) = delete;
    QuorvaLog& operator=(const QuorvaLog&) = delete;

    /// Starts the log file and says where it is. Messages before this one are not in it. Once.
    void bootstrap(std::shared_ptr<FileLogMirror> logFile);

    void write(LogLevel level, std::string_view message, QuorvaLogCategory category,
               CallSite site) override;

    /// Waits until the messages logged so far have been written. Not for use where waiting for a
    /// disk matters.
    void flush();

private:
    /// False when the queue is full.
    bool post(LogLevel level, std::string_view message, QuorvaLogCategory category, CallSite site);

    static constexpr std::size_t maxWaiting = 65'536;

    const MainLoop& loop;
    SystemLog& systemLog;
    std::shared_ptr<FileLogMirror> mirror; // touched on the queue only
    std::atomic<std::size_t> dropped = 0;
    SerialQueue queue{maxWaiting}; // last: its tasks use the members above
};

} // namespace quorva
