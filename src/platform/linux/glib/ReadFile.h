// Files read into memory, with a bound on their size. Callable from any thread; the calls wait for
// the disk.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace quorva {

/// The content of the regular file that `path` leads to, read to its end. The size that the file
/// claims is not relied on: files in /proc claim 0. `error` is cleared on success.
///
/// Nothing, with `error` set, when the file is missing (ENOENT), is not a regular file (EINVAL), is
/// larger than `mostBytes` (EFBIG) or cannot be read. Never waits for the other end of a pipe.
[[nodiscard]] std::optional<std::string>
readWholeFile(const std::filesystem::path& path, std::size_t mostBytes, std::error_code& error);

/// The first `mostBytes` of an open file from its current position, fewer where it ends before: for
/// callers that opened the file themselves, or that can use the beginning of one that is too large.
/// Nothing, with `error` set, when it cannot be read. `error` is cleared on success.
[[nodiscard]] std::optional<std::string> readUpTo(const FileDescriptor& fd, std::size_t mostBytes,
                                                  std::error_code& error);

} // namespace quorva
