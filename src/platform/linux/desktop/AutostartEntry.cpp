#include "platform/linux/desktop/AutostartEntry.h"

#include "base/ApplicationId.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/Utf8.h"
#include "platform/linux/storage/LinuxWholeFile.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace quorva {
namespace {

namespace fs = std::filesystem;

constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* enabledKey = "X-GNOME-Autostart-enabled"; // read by more than GNOME

bool flag(GKeyFile* entry, const char* key, bool otherwise) {
    GError* error = nullptr;
    const bool value = g_key_file_get_boolean(entry, group, key, &error) != FALSE;
    const GErrorPtr failure(error);
    return failure ? otherwise : value;
}

/// Null when the bytes are not an entry.
GKeyFilePtr parse(const std::string& bytes) {
    GKeyFilePtr entry(g_key_file_new());
    const auto flags =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (g_key_file_load_from_data(entry.get(), bytes.data(), bytes.size(), flags, nullptr) ==
            FALSE ||
        g_key_file_has_group(entry.get(), group) == FALSE)
        entry.reset();
    return entry;
}

Time lastChange(const FileStamp& stamp) {
    return Time(
        std::chrono::duration_cast<Time::duration>(std::chrono::nanoseconds(stamp.modified)));
}

} // namespace

AutostartEntry::AutostartEntry(const fs::path& folder, std::string program_)
    : file(folder / "autostart" / fmt::format("{}.desktop", applicationId)),
      program(std::move(program_)) {}

LoginItemStatus AutostartEntry::status() const {
    std::error_code error;
    const auto content = LinuxWholeFile(file).read(error);
    if (!content)
        return error ? LoginItemStatus::notFound : LoginItemStatus::notRegistered;
    const auto entry = parse(content->bytes);
    if (!entry)
        return LoginItemStatus::notFound;
    return !flag(entry.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN, false) &&
                   flag(entry.get(), enabledKey, true)
               ? LoginItemStatus::enabled
               : LoginItemStatus::notRegistered;
}

std::optional<std::string> AutostartEntry::enable() const {
    if (program.empty())
        return "The path of this program is not known.";
    LinuxWholeFile whole(file);
    std::error_code error;
    const auto content = whole.read(error);
    if (error)
        return validUtf8(file.string()) + " can't be read: " + error.message();
    auto entry = content ? parse(content->bytes) : nullptr;
    if (!entry) {
        const bool isForeign = content && !content->bytes.empty();
        if (isForeign && !whole.setAside(lastChange(content->stamp), error))
            return validUtf8(file.string()) +
                   " is no entry, and can't be set aside: " + error.message();
        entry.reset(g_key_file_new());
    }
    const auto set = [&](const char* key, const std::string& value) {
        g_key_file_set_string(entry.get(), group, key, value.c_str());
    };
    const auto setUnlessThere = [&](const char* key, const std::string& value) {
        if (g_key_file_has_key(entry.get(), group, key, nullptr) == FALSE)
            set(key, value);
    };
    set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
    setUnlessThere(G_KEY_FILE_DESKTOP_KEY_NAME, "Quorva");
    setUnlessThere(G_KEY_FILE_DESKTOP_KEY_COMMENT, "Tells when an AI note-taker joins a meeting");
    setUnlessThere(G_KEY_FILE_DESKTOP_KEY_ICON, applicationId);
    set(G_KEY_FILE_DESKTOP_KEY_EXEC, execOf(program));
    // Not removed: where the key is there twice, only the last one would go, and the other count.
    if (g_key_file_has_key(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr) != FALSE)
        g_key_file_set_boolean(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, FALSE);
    g_key_file_set_boolean(entry.get(), group, enabledKey, TRUE);

    gsize size = 0;
    const GCharsPtr data(g_key_file_to_data(entry.get(), &size, nullptr));
    const std::string_view bytes(data.get(), size);
    if (content && content->bytes == bytes)
        return std::nullopt;
    if (!whole.replace(bytes, error))
        return validUtf8(file.string()) + " can't be written: " + error.message();
    return std::nullopt;
}

std::optional<std::string> AutostartEntry::remove() const {
    std::error_code error;
    fs::remove(file, error);
    if (error)
        return validUtf8(file.string()) + " can't be removed: " + error.message();
    return std::nullopt;
}

std::string AutostartEntry::ownProgram() {
    if (const char* const image = std::getenv("APPIMAGE"); image != nullptr && *image == '/')
        return image; // the running program is in a mount that ends with it
    std::error_code error;
    auto path = fs::read_symlink("/proc/self/exe", error).string();
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced))
        path.resize(path.size() - replaced.size());
    return path;
}

std::string AutostartEntry::execOf(const std::string& program) {
    std::string value = "\"";
    for (const char character : program) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos)
            value += '\\';
        value += character;
        if (character == '%')
            value += '%';
    }
    return value + '"';
}

} // namespace quorva
