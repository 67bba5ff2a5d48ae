#include "log/FileLogMirror.h"

#include <fmt/format.h>

#include <utility>

namespace quorva {

FileLogMirror::FileLogMirror(std::shared_ptr<FileSystem> files_, Time start,
                             std::filesystem::path logDir_, BuildInfo build_, Console console_)
    : files(std::move(files_)),
      startTime(start),
      logDir(std::move(logDir_)),
      currentPath(logDir / "quorva.log"),
      build(std::move(build_)),
      console(std::move(console_)) {}

void FileLogMirror::start() {
    auto error = files->createDirectories(logDir);
    if (!error)
        error = open();
    isOpen = !error;
    if (!error)
        currentSize = handle->size(error);
    if (error) {
        currentSize = 0;
        console(fmt::format("[Quorva] FileLogMirror.start failed: {}", error.message()));
        return;
    }
    const auto line = bootLine();
    if (!handle->append(line))
        currentSize += line.size();
}

void FileLogMirror::append(std::string_view line) {
    if (!isOpen)
        return;
    const auto failure = std::exchange(lastFailure, write(line));
    if (lastFailure && lastFailure != failure)
        console(fmt::format("[Quorva] FileLogMirror.write failed: {}", lastFailure.message()));
}

std::error_code FileLogMirror::open() {
    std::error_code error;
    handle = files->openForAppending(currentPath, error);
    return error;
}

std::error_code FileLogMirror::write(std::string_view line) {
    if (!handle || !handle->isAt(currentPath)) {
        std::error_code error;
        auto reopened = files->openForAppending(currentPath, error);
        if (error)
            return error; // the old handle stays, and the next line tries again
        handle = std::move(reopened);
        currentSize = handle->size(error);
    }
    if (currentSize >= 2 * maxBytes)
        if (const auto error = rotate())
            return error;
    if (const auto error = handle->append(line))
        return error;
    currentSize += line.size();
    return currentSize >= maxBytes ? rotate() : std::error_code{};
}

std::error_code FileLogMirror::rotate() {
    const auto closing = std::move(handle);
    if (const auto error = closing->close())
        return error;

    const auto replace = [this](const std::filesystem::path& from,
                                const std::filesystem::path& to) {
        (void)files->remove(to);
        return files->rename(from, to);
    };
    for (int number = maxFiles - 1; number >= 1; --number)
        if (files->exists(rotatedPath(number)))
            if (const auto error = replace(rotatedPath(number), rotatedPath(number + 1)))
                return error;
    if (const auto error = replace(currentPath, rotatedPath(1)))
        return error;
    if (const auto error = open())
        return error;
    currentSize = 0;
    (void)files->remove(rotatedPath(maxFiles + 1));
    return {};
}

std::filesystem::path FileLogMirror::rotatedPath(int number) const {
    auto path = currentPath;
    path += fmt::format(".{}", number);
    return path;
}

std::string FileLogMirror::bootLine() const {
    return fmt::format("{} [info] [boot] QuorvaApp v{} (build {}) PID {}\n", iso8601(startTime),
                       build.shortVersion.value_or("?"), build.buildVersion.value_or("?"),
                       build.processIdentifier);
}

} // namespace quorva
