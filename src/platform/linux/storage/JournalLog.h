// The system's journal, systemd-journald. Each message carries the fields MESSAGE, PRIORITY (RFC
// 5424 severity: debug 7, info 6, notice 5, error 3), QUORVA_CATEGORY, QUORVA_SUBSYSTEM,
// SYSLOG_IDENTIFIER, CODE_FILE and CODE_LINE. Without a running journal, messages are lost.
// Callable from any thread; may wait for the journal's socket.
#pragma once

#include "platform/SystemLog.h"

namespace quorva {

class JournalLog final : public SystemLog {
public:
    void send(LogLevel level, std::string_view message, QuorvaLogCategory category,
              CallSite site) override;
};

} // namespace quorva
