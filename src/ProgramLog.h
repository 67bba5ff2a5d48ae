// The log file of a program of ours, for the programs that keep one.
#pragma once

#include "core/QuorvaLog.h"
#include "platform/FileSystem.h"

#include <fmt/format.h>
#include <glib.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace quorva {

/// Starts the file below $XDG_STATE_HOME. `files` and `loop` must outlive the log.
inline void startLogFile(QuorvaLog& log, FileSystem& files, const MainLoop& loop) {
    const std::filesystem::path state = g_get_user_state_dir();
    log.bootstrap(std::make_shared<FileLogMirror>(
        files, loop, state / "Logs" / "Quorva", BuildInfo{QUORVA_VERSION, QUORVA_BUILD, ::getpid()},
        [](std::string_view message) { fmt::print(stderr, "{}\n", message); }));
}

} // namespace quorva
