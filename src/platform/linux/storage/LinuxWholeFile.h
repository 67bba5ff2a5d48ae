// Whole files as POSIX has them: written beside the old one, synchronised, and renamed over it.
#pragma once

#include "platform/WholeFile.h"

namespace quorva {

class LinuxWholeFile final : public WholeFile {
public:
    /// The file at `path`, or where the symbolic links at `path` lead to now.
    explicit LinuxWholeFile(std::filesystem::path path);

    [[nodiscard]] const std::filesystem::path& path() const override { return file; }
    [[nodiscard]] std::optional<FileStamp> stamp(std::error_code& error) const override;
    [[nodiscard]] std::optional<Content> read(std::error_code& error) const override;
    [[nodiscard]] std::optional<FileStamp> replace(std::string_view bytes,
                                                   std::error_code& error) override;
    [[nodiscard]] std::optional<std::filesystem::path> setAside(Time time,
                                                                std::error_code& error) override;

private:
    void removeLeftovers() const;

    const std::filesystem::path file;
    const std::string temporaryPrefix; ///< of the names that a replacement is first written under
};

} // namespace quorva
