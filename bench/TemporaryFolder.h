// A folder that goes with its owner.
#pragma once

#include <filesystem>

namespace quorva::bench {

class TemporaryFolder {
public:
    /// Makes an empty folder; throws std::system_error when that cannot be done.
    TemporaryFolder();
    ~TemporaryFolder();

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

} // namespace quorva::bench
