// The program's own files. Failures are returned as error codes of the system category, so that a
// test can simulate a full disk.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace quorva {

/// A file open for appending. Used by one thread at a time; closed on destruction at the latest.
class AppendFile {
public:
    virtual ~AppendFile() = default;

    /// Appends all bytes or, as far as the system allows, none: a part that was written before a
    /// failure is removed again.
    [[nodiscard]] virtual std::error_code append(std::string_view bytes) = 0;

    /// The file's size in bytes.
    [[nodiscard]] virtual std::uint64_t size(std::error_code& error) const = 0;

    /// Whether `path` still leads to this file: false after it was deleted or moved away.
    [[nodiscard]] virtual bool isAt(const std::filesystem::path& path) const = 0;

    /// Closes the file. Returns write errors that the system reports only now.
    [[nodiscard]] virtual std::error_code close() = 0;
};

/// Callable from any thread. Operations wait for the disk: never call them on the main thread.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Makes the directory, and those above it that are missing, for this user only (mode 0700).
    /// An existing directory is a success.
    [[nodiscard]] virtual std::error_code
    createDirectories(const std::filesystem::path& directory) = 0;

    /// Opens a file for appending. A missing file is created empty, for this user only (mode 0600).
    /// Null with `error` set on failure.
    [[nodiscard]] virtual std::unique_ptr<AppendFile>
    openForAppending(const std::filesystem::path& path, std::error_code& error) = 0;

    /// Whether something is at `path`; false where that cannot be looked up.
    [[nodiscard]] virtual bool exists(const std::filesystem::path& path) = 0;

    /// Removes a file. A missing one is a failure.
    [[nodiscard]] virtual std::error_code remove(const std::filesystem::path& path) = 0;

    /// Renames a file, replacing the one at `to`; atomic within one file system (POSIX rename).
    [[nodiscard]] virtual std::error_code rename(const std::filesystem::path& from,
                                                 const std::filesystem::path& to) = 0;
};

} // namespace quorva
