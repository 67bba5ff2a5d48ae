// A file that is read and replaced as a whole, so that readers find either the old content or the
// new one.
#pragma once

#include "base/Time.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace quorva {

/// Distinguishes one state of a file from another without reading it.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0; ///< nanoseconds
    std::int64_t changed = 0;

    bool operator==(const FileStamp&) const = default;
};

/// Used by one thread at a time. Operations wait for the disk. `error` is set on failure and
/// cleared on success.
class WholeFile {
public:
    virtual ~WholeFile() = default;

    struct Content {
        std::string bytes;
        FileStamp stamp; ///< taken before the bytes were read
    };

    /// The file's path, symbolic links followed.
    [[nodiscard]] virtual const std::filesystem::path& path() const = 0;

    /// The file's state now. Nothing, without an error, when there is no file.
    [[nodiscard]] virtual std::optional<FileStamp> stamp(std::error_code& error) const = 0;

    /// The file's content. Nothing, without an error, when there is no file. Reading fails
    /// for anything but a regular file of at most 16 MiB.
    [[nodiscard]] virtual std::optional<Content> read(std::error_code& error) const = 0;

    /// Replaces the content, and returns the new stamp once `bytes` would survive a power cut. The
    /// file is for this user only (mode 0600); missing directories are made (mode 0700). Nothing,
    /// with `error` set, on failure: the file then holds the old content or the new one, or content
    /// that another program wrote at the same time.
    [[nodiscard]] virtual std::optional<FileStamp> replace(std::string_view bytes,
                                                           std::error_code& error) = 0;

    /// Renames the file to an unused name that contains `time`, in the same directory, and returns
    /// the new path. Nothing, with `error` set, on failure.
    [[nodiscard]] virtual std::optional<std::filesystem::path> setAside(Time time,
                                                                        std::error_code& error) = 0;
};

} // namespace quorva
