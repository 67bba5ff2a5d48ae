// Files through POSIX calls.
#pragma once

#include "platform/FileSystem.h"

namespace quorva {

class LinuxFileSystem final : public FileSystem {
public:
    [[nodiscard]] std::error_code
    createDirectories(const std::filesystem::path& directory) override;
    [[nodiscard]] std::unique_ptr<AppendFile> openForAppending(const std::filesystem::path& path,
                                                               std::error_code& error) override;
    [[nodiscard]] bool exists(const std::filesystem::path& path) override;
    [[nodiscard]] std::error_code remove(const std::filesystem::path& path) override;
    [[nodiscard]] std::error_code rename(const std::filesystem::path& from,
                                         const std::filesystem::path& to) override;
};

} // namespace quorva
