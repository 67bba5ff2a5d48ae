// The log file of a program.
#pragma once

#include "log/QuorvaLog.h"
#include "platform/FileSystem.h"

#include <cstdio>
#include <filesystem>
#include <memory>

namespace quorva {

/// Makes `log` write to its file too, below `stateFolder` ($XDG_STATE_HOME). Failures with the file
/// are printed on standard error. `files` and `loop` must outlive the log.
inline void startLogFile(QuorvaLog& log, FileSystem& files, const MainLoop& loop,
                         const std::filesystem::path& stateFolder, const BuildInfo& build) {
    log.bootstrap(std::make_shared<FileLogMirror>(
        files, loop, stateFolder / "Logs" / "Quorva", build,
        [](std::string_view message) { print(stderr, Printable::format("{}\n", message)); }));
}

} // namespace quorva
