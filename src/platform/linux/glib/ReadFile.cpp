#include "platform/linux/glib/ReadFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace quorva {
namespace {

std::error_code lastError() {
    return {errno, std::system_category()};
}

} // namespace

/// O_NONBLOCK: opening a pipe must not wait for its other end.
std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::size_t mostBytes,
                                         std::error_code& error) {
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!fd || ::fstat(fd.get(), &status) != 0) {
        error = lastError();
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = std::make_error_code(std::errc::invalid_argument);
        return std::nullopt;
    }
    auto bytes = readUpTo(fd, mostBytes + 1, error);
    if (bytes && bytes->size() > mostBytes) {
        error = std::make_error_code(std::errc::file_too_large);
        return std::nullopt;
    }
    return bytes;
}

std::optional<std::string> readUpTo(const FileDescriptor& fd, std::size_t mostBytes,
                                    std::error_code& error) {
    constexpr std::size_t firstPart = 4096;
    error.clear();
    std::string bytes(std::min(mostBytes, firstPart), '\0');
    std::size_t length = 0;
    while (length < mostBytes) {
        if (length == bytes.size())
            bytes.resize(std::min(mostBytes, bytes.size() * 4));
        const auto count = ::read(fd.get(), bytes.data() + length, bytes.size() - length);
        if (count == 0)
            break;
        if (count > 0) {
            length += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            error = lastError();
            return std::nullopt;
        }
    }
    bytes.resize(length);
    return bytes;
}

} // namespace quorva
