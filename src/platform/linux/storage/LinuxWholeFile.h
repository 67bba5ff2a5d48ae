// Whole files as GLib writes them (g_file_set_contents_full): into a temporary file "NAME.XXXXXX"
// in the same directory, which is synchronised and renamed over the old one. A program that is
// killed meanwhile leaves the temporary file behind. It is not removed later, because its name does
// not distinguish it from a copy made by the user.
#pragma once

#include "platform/WholeFile.h"

namespace quorva {

class LinuxWholeFile final : public WholeFile {
public:
    /// The file at `path`. Symbolic links are followed once, now.
    explicit LinuxWholeFile(std::filesystem::path path);

    [[nodiscard]] const std::filesystem::path& path() const override { return file; }
    [[nodiscard]] std::optional<FileStamp> stamp(std::error_code& error) const override;
    [[nodiscard]] std::optional<Content> read(std::error_code& error) const override;
    [[nodiscard]] std::optional<FileStamp> replace(std::string_view bytes,
                                                   std::error_code& error) override;
    [[nodiscard]] std::optional<std::filesystem::path> setAside(Time time,
                                                                std::error_code& error) override;

private:
    const std::filesystem::path file;
};

} // namespace quorva
