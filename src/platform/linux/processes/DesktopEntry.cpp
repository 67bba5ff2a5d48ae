#include "platform/linux/processes/DesktopEntry.h"

#include "base/Text.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/processes/ProcFormats.h"

#include <algorithm>
#include <array>

namespace quorva {
namespace {

constexpr std::array launchers{
    std::string_view("flatpak"),
    std::string_view("snap"),
    std::string_view("gtk-launch"),
    std::string_view("gio"),
    std::string_view("xdg-open"),
    std::string_view("pkexec"),
    std::string_view("sudo"),
    std::string_view("systemd-run"),
    std::string_view("bwrap"),
    std::string_view("xterm"),
    std::string_view("x-terminal-emulator"),
};

bool isFieldCode(std::string_view argument) {
    return argument.size() == 2 && argument[0] == '%';
}

std::optional<std::string> keyOf(GKeyFile* file, const char* key) {
    const GCharsPtr value(g_key_file_get_string(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr));
    return value ? std::optional<std::string>(value.get()) : std::nullopt;
}

std::vector<std::string> argumentsOf(const std::string& exec) {
    gint count = 0;
    gchar** raw = nullptr;
    if (!g_shell_parse_argv(exec.c_str(), &count, &raw, nullptr))
        return {};
    const GStringsPtr arguments(raw);
    return {raw, raw + count};
}

} // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string id, std::string_view bytes) {
    const GKeyFilePtr file(g_key_file_new());
    if (!g_key_file_load_from_data(file.get(), bytes.data(), bytes.size(), G_KEY_FILE_NONE,
                                   nullptr) ||
        !g_key_file_has_group(file.get(), G_KEY_FILE_DESKTOP_GROUP))
        return std::nullopt;
    DesktopEntry entry{.id = std::move(id)};
    const GCharsPtr name(g_key_file_get_locale_string(
        file.get(), G_KEY_FILE_DESKTOP_GROUP, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr));
    if (name && *name)
        entry.name = name.get();
    if (const auto exec = keyOf(file.get(), G_KEY_FILE_DESKTOP_KEY_EXEC))
        entry.command = argumentsOf(*exec);
    const auto type = keyOf(file.get(), G_KEY_FILE_DESKTOP_KEY_TYPE);
    entry.isHidden = type != G_KEY_FILE_DESKTOP_TYPE_APPLICATION ||
                     g_key_file_get_boolean(file.get(), G_KEY_FILE_DESKTOP_GROUP,
                                            G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr) != FALSE;
    return entry;
}

std::optional<EntryProgram> programOf(const std::vector<std::string>& command) {
    auto at = command.begin();
    if (at != command.end() && lastPathComponent(*at) == "env")
        ++at;
    const auto isForEnv = [](const std::string& argument) {
        return argument.starts_with('-') || argument.find('=') < argument.find('/');
    };
    at = std::find_if_not(at, command.end(), isForEnv);
    if (at == command.end() || isLauncher(*at))
        return std::nullopt;

    EntryProgram program{.path = *at};
    if (isInterpreter(program.path)) {
        const auto script = scriptOfCommand(program.path, {at, command.end()});
        if (!script)
            return std::nullopt;
        program.path = *script;
        at = std::find(at, command.end(), program.path);
    }
    program.isAlone = at == command.end() || std::all_of(at + 1, command.end(), isFieldCode);
    return program;
}

bool isLauncher(std::string_view program) {
    return std::find(launchers.begin(), launchers.end(), lastPathComponent(program)) !=
           launchers.end();
}

} // namespace quorva
