#include "platform/linux/storage/LinuxFileSystem.h"

#include "platform/linux/glib/Handles.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace quorva {
namespace {

std::error_code lastError() {
    return {errno, std::system_category()};
}

class LinuxAppendFile final : public AppendFile {
public:
    explicit LinuxAppendFile(FileDescriptor opened) : fd(std::move(opened)) {}

    std::error_code append(std::string_view bytes) override {
        std::size_t written = 0;
        while (written < bytes.size()) {
            const auto count = ::write(fd.get(), bytes.data() + written, bytes.size() - written);
            if (count >= 0) {
                written += static_cast<std::size_t>(count);
            } else if (errno != EINTR) {
                const auto error = lastError();
                removePartialLine(written);
                return error;
            }
        }
        return {};
    }

    std::uint64_t size(std::error_code& error) const override {
        struct stat status {};
        error = ::fstat(fd.get(), &status) == 0 ? std::error_code{} : lastError();
        return error ? 0 : static_cast<std::uint64_t>(status.st_size);
    }

    bool isAt(const std::filesystem::path& path) const override {
        struct stat here {};
        struct stat there {};
        return ::fstat(fd.get(), &here) == 0 && ::stat(path.c_str(), &there) == 0 &&
               here.st_dev == there.st_dev && here.st_ino == there.st_ino;
    }

    std::error_code close() override { return fd.reset() == 0 ? std::error_code{} : lastError(); }

private:
    /// Removes the beginning of a line whose rest could not be written.
    void removePartialLine(std::size_t written) const {
        std::error_code error;
        const auto end = size(error);
        if (written > 0 && !error && end >= written)
            (void)!::ftruncate(fd.get(), static_cast<off_t>(end - written));
    }

    FileDescriptor fd;
};

std::error_code makeDirectory(const std::filesystem::path& directory) {
    if (::mkdir(directory.c_str(), 0700) == 0)
        return {};
    const auto error = lastError();
    std::error_code ignored;
    return std::filesystem::is_directory(directory, ignored) ? std::error_code{} : error;
}

} // namespace

std::error_code LinuxFileSystem::createDirectories(const std::filesystem::path& directory) {
    std::filesystem::path soFar;
    for (const auto& part : directory) {
        soFar /= part;
        if (const auto error = makeDirectory(soFar))
            return error;
    }
    return {};
}

std::unique_ptr<AppendFile> LinuxFileSystem::openForAppending(const std::filesystem::path& path,
                                                              std::error_code& error) {
    // A pipe or a device could keep whoever writes waiting.
    FileDescriptor fd(::open(
        path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0600));
    struct stat status {};
    if (!fd || ::fstat(fd.get(), &status) != 0) {
        error = lastError();
        return nullptr;
    }
    if (!S_ISREG(status.st_mode)) {
        error = std::make_error_code(std::errc::operation_not_supported);
        return nullptr;
    }
    error.clear();
    return std::make_unique<LinuxAppendFile>(std::move(fd));
}

bool LinuxFileSystem::exists(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

std::error_code LinuxFileSystem::remove(const std::filesystem::path& path) {
    return ::unlink(path.c_str()) == 0 ? std::error_code{} : lastError();
}

std::error_code LinuxFileSystem::rename(const std::filesystem::path& from,
                                        const std::filesystem::path& to) {
    return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code{} : lastError();
}

} // namespace quorva
