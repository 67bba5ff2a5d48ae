// A folder below the system's temporary files, removed with its contents by the destructor.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace quorva {

/// Not for the main thread, except the destructor: it removes the few files of a drill.
class DrillFolder {
public:
    /// Creates a folder below `place`, and `place` itself if it is missing. Throws
    /// std::system_error on failure.
    explicit DrillFolder(const std::filesystem::path& place);
    ~DrillFolder();

    DrillFolder(const DrillFolder&) = delete;
    DrillFolder& operator=(const DrillFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

} // namespace quorva
