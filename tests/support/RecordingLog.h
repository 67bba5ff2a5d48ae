// Logs that keep what they are told.
#pragma once

#include "platform/Log.h"
#include "platform/SystemLog.h"

#include <string>
#include <vector>

namespace quorva {

struct LoggedMessage {
    LogLevel level;
    std::string message;
    std::string category;

    bool operator==(const LoggedMessage&) const = default;
};

class RecordingLog final : public Log, public SystemLog {
public:
    std::vector<LoggedMessage> messages;

    void write(LogLevel level, const Printable& message, QuorvaLogCategory category,
               CallSite site) override {
        send(level, message.str(), category, site);
    }
    void send(LogLevel level, std::string_view message, QuorvaLogCategory category,
              CallSite) override {
        messages.push_back({level, std::string(message), std::string(category.category)});
    }

    [[nodiscard]] std::size_t count(std::string_view part) const {
        std::size_t hits = 0;
        for (const auto& logged : messages)
            hits += logged.message.find(part) != std::string::npos;
        return hits;
    }
};

} // namespace quorva
