#include "platform/linux/storage/LinuxWholeFile.h"

#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/storage/LinuxFileSystem.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

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
        path = path.parent_path() / fs::read_symlink(path, error); // an absolute target replaces
    return path;
}

FileStamp stampOf(const struct stat& status) {
    const auto nanoseconds = [](const timespec& time) {
        return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
    };
    return {.device = status.st_dev,
            .inode = status.st_ino,
            .size = status.st_size,
            .modified = nanoseconds(status.st_mtim),
            .changed = nanoseconds(status.st_ctim)};
}

std::optional<FileStamp> stampOf(const FileDescriptor& fd, std::error_code& error) {
    struct stat status {};
    if (::fstat(fd.get(), &status) == 0)
        return stampOf(status);
    error = lastError();
    return std::nullopt;
}

bool writeAll(const FileDescriptor& fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(fd.get(), bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return false;
    }
    return true;
}

/// Makes a rename within `directory` last.
bool synchronise(const fs::path& directory) {
    const FileDescriptor fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd && ::fsync(fd.get()) == 0;
}

/// Renames without replacing, also on file systems that have no such operation.
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

LinuxWholeFile::LinuxWholeFile(fs::path path)
    : file(followedLinks(std::move(path))),
      temporaryPrefix("." + file.filename().string() + ".new-") {}

std::optional<FileStamp> LinuxWholeFile::stamp(std::error_code& error) const {
    error.clear();
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0)
        return stampOf(status);
    if (errno != ENOENT)
        error = lastError();
    return std::nullopt;
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
    removeLeftovers();

    std::string temporary = (directory / (temporaryPrefix + "XXXXXX")).string();
    const FileDescriptor fd(::mkostemp(temporary.data(), O_CLOEXEC)); // O_EXCL, mode 0600
    if (!fd) {
        error = lastError();
        return std::nullopt;
    }
    if (!writeAll(fd, bytes) || ::fsync(fd.get()) != 0 ||
        ::rename(temporary.c_str(), file.c_str()) != 0) {
        error = lastError();
        (void)::unlink(temporary.c_str());
        return std::nullopt;
    }
    if (!synchronise(directory)) {
        error = lastError();
        return std::nullopt;
    }
    return stampOf(fd, error); // after the rename, which may change it
}

std::optional<fs::path> LinuxWholeFile::setAside(Time time, std::error_code& error) {
    error.clear();
    auto moment = iso8601Seconds(time);
    std::replace(moment.begin(), moment.end(), ':', '-'); // for disks that are carried elsewhere
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

/// Removes what a program that was ended while it wrote has left behind. Recent ones are spared:
/// another one may be writing now.
void LinuxWholeFile::removeLeftovers() const {
    std::error_code ignored;
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (auto entry = fs::directory_iterator(file.parent_path(), ignored);
         entry != fs::directory_iterator(); entry.increment(ignored)) {
        std::error_code error;
        if (entry->path().filename().string().starts_with(temporaryPrefix) &&
            entry->last_write_time(error) < old && !error)
            (void)::unlink(entry->path().c_str());
    }
}

} // namespace quorva
