#include "platform/linux/storage/LinuxWholeFile.h"

#include "platform/linux/glib/FileStamps.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/storage/LinuxFileSystem.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace quorva {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maxBytes = std::size_t{16} * 1024 * 1024;

std::error_code lastError() {
    return {errno, std::system_category()};
}

fs::path followedLinks(fs::path path) {
    std::error_code error;
    for (int links = 0; links < 16 && fs::is_symlink(fs::symlink_status(path, error)); ++links)
        path =
            path.parent_path() / fs::read_symlink(path, error); // an absolute target replaces all
    return path;
}

/// The errno that GLib's error was made from. GLib's codes leave some out (EDQUOT, EFBIG), which
/// only the end of the message names.
std::error_code codeOf(const GError& error) {
    const std::string_view message = error.message;
    int number = EHWPOISON; // Linux has none beyond
    while (number > 0 && (g_file_error_from_errno(number) != error.code ||
                          !message.ends_with(g_strerror(number))))
        --number;
    return {number > 0 ? number : EIO, std::system_category()};
}

/// Makes renames within `directory` durable.
bool synchronise(const fs::path& directory) {
    const FileDescriptor fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd && ::fsync(fd.get()) == 0;
}

/// Renames without replacing an existing file, also on file systems that lack RENAME_NOREPLACE.
bool renameToUnused(const fs::path& from, const fs::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    struct stat status {};
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    if (::lstat(to.c_str(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.c_str(), to.c_str()) == 0;
}

} // namespace

LinuxWholeFile::LinuxWholeFile(fs::path path) : file(followedLinks(std::move(path))) {}

std::optional<FileStamp> LinuxWholeFile::stamp(std::error_code& error) const {
    const auto stamp = stampAt(file, error);
    if (error == std::errc::no_such_file_or_directory)
        error.clear();
    return stamp;
}

std::optional<WholeFile::Content> LinuxWholeFile::read(std::error_code& error) const {
    const auto before = stamp(error);
    if (!before)
        return std::nullopt;
    auto bytes = readWholeFile(file, maxBytes, error);
    if (error == std::errc::no_such_file_or_directory) // removed meanwhile
        error.clear();
    return bytes ? std::optional(Content{std::move(*bytes), *before}) : std::nullopt;
}

std::optional<FileStamp> LinuxWholeFile::replace(std::string_view bytes, std::error_code& error) {
    const auto directory = file.parent_path();
    error = LinuxFileSystem().createDirectories(directory);
    if (error)
        return std::nullopt;
    GError* raw = nullptr;
    const bool isWritten =
        g_file_set_contents_full(file.c_str(), bytes.data(), static_cast<gssize>(bytes.size()),
                                 static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                                    G_FILE_SET_CONTENTS_DURABLE),
                                 0600, &raw);
    if (const GErrorPtr failure(raw); !isWritten) {
        error = codeOf(*failure);
        return std::nullopt;
    }
    // GLib does not report the stamp of the file it wrote. Reading back makes sure that the stamp
    // is not that of another program's file, whose changes it would hide.
    const auto content = read(error);
    if (!error && (!content || content->bytes != bytes))
        error = std::make_error_code(std::errc::resource_unavailable_try_again);
    return error ? std::nullopt : std::optional(content->stamp);
}

std::optional<fs::path> LinuxWholeFile::setAside(Time time, std::error_code& error) {
    error.clear();
    auto moment = iso8601Seconds(time);
    std::replace(moment.begin(), moment.end(), ':',
                 '-'); // other file systems do not allow colons
    for (int number = 1; number <= 1000; ++number) {
        fs::path aside = file;
        aside += number == 1 ? fmt::format(".{}", moment) : fmt::format(".{}-{}", moment, number);
        if (renameToUnused(file, aside)) {
            (void)synchronise(file.parent_path());
            return aside;
        }
        error = lastError();
        if (error != std::errc::file_exists)
            return std::nullopt;
        error.clear();
    }
    error = std::make_error_code(std::errc::file_exists);
    return std::nullopt;
}

} // namespace quorva
