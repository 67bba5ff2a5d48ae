// A folder of this program's own among the temporary files, gone with all that is in it at the end.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace quorva {

/// Not for the main thread, but for the removal of the few files that a drill needs.
class DrillFolder {
public:
    /// Makes the folder below this one, which is made too where it is missing. Throws
    /// std::system_error where that is not possible.
    explicit DrillFolder(const std::filesystem::path& place);
    ~DrillFolder();

    DrillFolder(const DrillFolder&) = delete;
    DrillFolder& operator=(const DrillFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

} // namespace quorva
