#include "platform/linux/storage/JournalLog.h"

#include "base/ApplicationId.h"

#include <syslog.h>

#define SD_JOURNAL_SUPPRESS_LOCATION // the location is the caller's, not this file's
#include <systemd/sd-journal.h>

#include <array>
#include <string>

namespace quorva {
namespace {

constexpr int priorityOf(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return LOG_DEBUG;
    case LogLevel::info:
        return LOG_INFO;
    case LogLevel::notice:
        return LOG_NOTICE;
    case LogLevel::error:
        break;
    }
    return LOG_ERR;
}

} // namespace

void JournalLog::send(LogLevel level, std::string_view message, QuorvaLogCategory category,
                      CallSite site) {
    std::array fields{
        "MESSAGE=" + std::string(message),
        "PRIORITY=" + std::to_string(priorityOf(level)),
        "QUORVA_CATEGORY=" + std::string(category.category),
        std::string("QUORVA_SUBSYSTEM=") + applicationId,
        std::string("SYSLOG_IDENTIFIER=quorva"),
        "CODE_FILE=" + std::string(site.file),
        "CODE_LINE=" + std::to_string(site.line),
    };
    std::array<iovec, fields.size()> parts{};
    for (std::size_t i = 0; i < fields.size(); ++i)
        parts[i] = {.iov_base = fields[i].data(), .iov_len = fields[i].size()};
    sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
}

} // namespace quorva
