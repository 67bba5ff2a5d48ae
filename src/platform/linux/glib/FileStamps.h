// What tells one state of a file from another, as stat(2) has it. Callable from any thread.
#pragma once

#include "platform/WholeFile.h"

#include <cerrno>
#include <sys/stat.h>

namespace quorva {

[[nodiscard]] inline FileStamp stampOf(const struct stat& status) {
    const auto nanoseconds = [](const timespec& time) {
        return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
    };
    return {.device = status.st_dev,
            .inode = status.st_ino,
            .size = status.st_size,
            .modified = nanoseconds(status.st_mtim),
            .changed = nanoseconds(status.st_ctim)};
}

/// The state of what `path` leads to, which may be a folder. Nothing, with `error` set, when that
/// cannot be looked up; `error` is cleared on success.
[[nodiscard]] inline std::optional<FileStamp> stampAt(const std::filesystem::path& path,
                                                      std::error_code& error) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        error = {errno, std::system_category()};
        return std::nullopt;
    }
    error.clear();
    return stampOf(status);
}

} // namespace quorva
