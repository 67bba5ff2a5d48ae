// A file that is read whole and replaced whole, so that whoever reads it finds either the old
// content or the new one.
#pragma once

#include "base/Time.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace quorva {

/// Tells one state of a file from another without reading it.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0; ///< nanoseconds
    std::int64_t changed = 0;

    bool operator==(const FileStamp&) const = default;
};

/// Used by one thread at a time. Operations wait for the disk. Failures come back in `error`, which
/// is cleared on success.
class WholeFile {
public:
    virtual ~WholeFile() = default;

    struct Content {
        std::string bytes;
        FileStamp stamp; ///< of a moment before the bytes were read
    };

    /// Where the file is.
    [[nodiscard]] virtual const std::filesystem::path& path() const = 0;

    /// The file's state now. Nothing, without an error, when there is no file.
    [[nodiscard]] virtual std::optional<FileStamp> stamp(std::error_code& error) const = 0;

    /// The file's content. Nothing, without an error, when there is no file. What is no regular
    /// file, or larger than 16 MiB, cannot be read.
    [[nodiscard]] virtual std::optional<Content> read(std::error_code& error) const = 0;

    /// Makes `bytes` the file's content, for this user only (mode 0600, in directories of mode 0700
    /// where they are missing), so that it survives a power cut once this returns its stamp. Fails
    /// also when another program has replaced the file meanwhile. After any other failure the file
    /// holds the old content or the new one, whole.
    [[nodiscard]] virtual std::optional<FileStamp> replace(std::string_view bytes,
                                                           std::error_code& error) = 0;

    /// Renames the file to one beside it that bears `time` in its name, and returns that. Never
    /// takes a name that is in use.
    [[nodiscard]] virtual std::optional<std::filesystem::path> setAside(Time time,
                                                                        std::error_code& error) = 0;
};

} // namespace quorva
