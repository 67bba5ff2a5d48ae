// The log file of a program.
#pragma once

#include "log/QuorvaLog.h"
#include "platform/FileSystem.h"

#include <cstdio>
#include <filesystem>
#include <memory>

namespace quorva {

/// Makes `log` write to its file too, below `stateFolder` ($XDG_STATE_HOME). Failures with the file
/// are printed on standard error.
inline void startLogFile(QuorvaLog& log, std::shared_ptr<FileSystem> files, const MainLoop& loop,
                         const std::filesystem::path& stateFolder, const BuildInfo& build) {
    log.bootstrap(std::make_shared<FileLogMirror>(
        std::move(files), loop.now(), stateFolder / "Logs" / "Quorva", build,
        [](std::string_view message) { print(stderr, Printable::format("{}\n", message)); }));
}

} // namespace quorva
