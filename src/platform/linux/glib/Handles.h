// Owning types for the handles of C libraries and the kernel: each releases its handle once.
#pragma once

#include <gio/gio.h>

#include <dirent.h>
#include <memory>
#include <unistd.h>
#include <utility>

namespace quorva {

/// An open file descriptor, or none (-1). Closed on destruction.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : value(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : value(std::exchange(other.value, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            value = std::exchange(other.value, -1);
        }
        return *this;
    }
    ~FileDescriptor() { reset(); }

    [[nodiscard]] int get() const { return value; }
    explicit operator bool() const { return value >= 0; }

    /// Closes it and returns the result of close(2), or 0 when there is none.
    int reset() {
        const int fd = std::exchange(value, -1);
        return fd >= 0 ? ::close(fd) : 0;
    }

private:
    int value = -1;
};

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* handle) const {
        release(handle);
    }
};

template <typename T>
using GObjectPtr = std::unique_ptr<T, Release<g_object_unref>>;
using GErrorPtr = std::unique_ptr<GError, Release<g_error_free>>;
using GKeyFilePtr = std::unique_ptr<GKeyFile, Release<g_key_file_unref>>;
using GVariantPtr = std::unique_ptr<GVariant, Release<g_variant_unref>>;
using GCharsPtr = std::unique_ptr<gchar, Release<g_free>>;
using GStringsPtr = std::unique_ptr<gchar*, Release<g_strfreev>>;
using GMainLoopPtr = std::unique_ptr<GMainLoop, Release<g_main_loop_unref>>;
using DirectoryPtr = std::unique_ptr<DIR, Release<::closedir>>;

struct DestroySource {
    void operator()(GSource* source) const {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

/// A GSource that is attached to a main context. Destroyed with its owner.
using GSourcePtr = std::unique_ptr<GSource, DestroySource>;
using GMainContextPtr = std::unique_ptr<GMainContext, Release<g_main_context_unref>>;

} // namespace quorva
