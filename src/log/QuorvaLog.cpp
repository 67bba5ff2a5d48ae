#include "log/QuorvaLog.h"

#include "base/Time.h"

#include <fmt/format.h>

namespace quorva {
namespace {

constexpr std::size_t sizeOfTheRest = 96; ///< the usual length of a line without its message

constexpr std::string_view nameOf(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return "debug";
    case LogLevel::info:
        return "info";
    case LogLevel::notice:
        return "notice";
    case LogLevel::error:
        break;
    }
    return "error";
}

constexpr std::string_view baseName(std::string_view path) {
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0: the whole path
}

} // namespace

QuorvaLog::QuorvaLog(const MainLoop& loop_, std::shared_ptr<SystemLog> systemLog)
    : loop(loop_), logs(std::make_shared<Logs>(Logs{std::move(systemLog), nullptr})) {}

QuorvaLog::~QuorvaLog() = default;

void QuorvaLog::bootstrap(std::shared_ptr<FileLogMirror> logFile) {
    const auto where = logFile->currentLogPath().string();
    const bool started = queue.post([logs = logs, logFile = std::move(logFile)] {
        logs->file = logFile;
        logs->file->start();
    });
    if (started)
        info(Printable::format("QuorvaLog bootstrap. Log file: {}", where), logCategory::appState);
}

void QuorvaLog::write(LogLevel level, const Printable& message, QuorvaLogCategory category,
                      CallSite site) {
    if (const auto count = dropped.exchange(0); count > 0)
        if (!post(LogLevel::error,
                  Printable::format("{} messages were not logged: too many at once", count),
                  logCategory::appState, CallSite::current()))
            dropped += count;
    if (!post(level, message, category, site))
        ++dropped;
}

bool QuorvaLog::post(LogLevel level, const Printable& message, QuorvaLogCategory category,
                     CallSite site) {
    std::string line;
    line.reserve(message.str().size() + sizeOfTheRest);
    line.append(iso8601(loop.now()));
    line.append(" [").append(nameOf(level)).append("] [").append(category.category).append("] ");
    const auto start = line.size();
    line.append(message.str());
    line.append(" (").append(baseName(site.file)).append(":");
    line.append(fmt::format_int(site.line).c_str()).append(")\n");

    return queue.post([logs = logs, level, category, site, start, length = message.str().size(),
                       line = std::move(line)] {
        logs->system->send(level, std::string_view(line).substr(start, length), category, site);
        if (logs->file)
            logs->file->append(line);
    });
}

void QuorvaLog::flush() {
    queue.drain();
}

} // namespace quorva
