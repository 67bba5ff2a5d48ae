// The log file: appends lines to "quorva.log" and rotates it at 5 MiB, keeping three older files.
// Everything except construction runs on one serial queue, so no other thread waits for the disk.
#pragma once

#include "base/Time.h"
#include "platform/FileSystem.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quorva {

/// What the boot line says about the program.
struct BuildInfo {
    std::optional<std::string> shortVersion; ///< "?" when absent
    std::optional<std::string> buildVersion; ///< "?" when absent
    std::int32_t processIdentifier = 0;
};

class FileLogMirror {
public:
    static constexpr std::uint64_t maxBytes = 5'242'880;
    static constexpr int maxFiles = 3;

    /// Prints the text of a failure on the console.
    using Console = std::function<void(std::string_view message)>;

    /// Opens nothing yet. `start` is the time of the boot line. Any thread.
    FileLogMirror(std::shared_ptr<FileSystem> files, Time start, std::filesystem::path logDir,
                  BuildInfo build, Console console);

    /// Opens the current file and writes the boot line. On failure, prints the reason on the
    /// console and leaves the mirror closed: later lines are dropped until the program starts
    /// again. On the queue.
    void start();

    /// Appends one line, which must end in a line feed, and rotates when the file has reached
    /// `maxBytes`. Drops the line while the mirror is closed. Prints a failure on the console, once
    /// for as long as it is the same; that line is lost, and the next one tries again. While a
    /// rotation fails, the file grows to twice `maxBytes` at most. Recreates a current file that
    /// was deleted or moved away. On the queue.
    void append(std::string_view line);

    /// The current file. Any thread.
    [[nodiscard]] const std::filesystem::path& currentLogPath() const { return currentPath; }

private:
    std::error_code open();
    std::error_code write(std::string_view line);
    std::error_code rotate();
    [[nodiscard]] std::filesystem::path rotatedPath(int number) const;
    [[nodiscard]] std::string bootLine() const;

    const std::shared_ptr<FileSystem> files;
    const Time startTime;
    const std::filesystem::path logDir;
    const std::filesystem::path currentPath;
    const BuildInfo build;
    const Console console;
    bool isOpen = false;                ///< it has started
    std::unique_ptr<AppendFile> handle; ///< null also after a rotation that failed
    std::uint64_t currentSize = 0;
    std::error_code lastFailure;
};

} // namespace quorva
