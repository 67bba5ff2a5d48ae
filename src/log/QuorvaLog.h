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

/// Callable from any thread, except construction, bootstrap and destruction (main thread). The
/// caller only formats the line; one serial queue writes both logs.
class QuorvaLog final : public Log {
public:
    /// The loop must outlive the log. Messages go to the system's log from now on.
    QuorvaLog(const MainLoop& loop, std::shared_ptr<SystemLog> systemLog);

    /// Writes the messages that are still queued. Those that a disk or a log service has not taken
    /// within a second are lost.
    ~QuorvaLog() override;

    QuorvaLog(const QuorvaLog&) = delete;
    QuorvaLog& operator=(const QuorvaLog&) = delete;

    /// Starts the log file and logs its path. Earlier messages are not in the file. Call it once.
    void bootstrap(std::shared_ptr<FileLogMirror> logFile);

    void write(LogLevel level, const Printable& message, QuorvaLogCategory category,
               CallSite site) override;

    /// Waits until the messages logged so far have been written, which may wait for a disk.
    void flush();

private:
    /// False when the queue is full.
    bool post(LogLevel level, const Printable& message, QuorvaLogCategory category, CallSite site);

    static constexpr std::size_t maxWaiting = 65'536;

    const MainLoop& loop;
    struct Logs {
        std::shared_ptr<SystemLog> system;
        std::shared_ptr<FileLogMirror> file; ///< null until it is started
    };
    const std::shared_ptr<Logs> logs; ///< touched on the queue only, which may outlive this
    std::atomic<std::size_t> dropped = 0;
    SerialQueue queue{maxWaiting, Seconds(1)};
};

} // namespace quorva
