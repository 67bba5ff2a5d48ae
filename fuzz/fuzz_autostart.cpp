// Any bytes in place of an autostart entry, and of the path of a program. Once enabled, the
// entry starts that program and nothing else; the rest of it is kept.
#include "Expect.h"
#include "platform/linux/desktop/AutostartEntry.h"
#include "platform/linux/drill/DrillFolder.h"
#include "platform/linux/glib/Handles.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

using namespace quorva;

namespace {

/// What a desktop makes of the value of Exec, as the Desktop Entry Specification has it: unquoted,
/// with "%%" for "%"; empty where it is anything but one quoted argument without field codes.
std::string programOf(std::string_view exec) {
    if (exec.size() < 2 || exec.front() != '"' || exec.back() != '"')
        return {};
    exec = exec.substr(1, exec.size() - 2);
    std::string program;
    for (std::size_t at = 0; at < exec.size(); ++at) {
        const char character = exec[at];
        const bool isPair = character == '\\' || character == '%';
        if (character == '"' || character == '`' || character == '$' ||
            (isPair && at + 1 == exec.size()) || (character == '%' && exec[at + 1] != '%'))
            return {};
        at += isPair ? 1 : 0;
        program += exec[at];
    }
    return program;
}

GKeyFilePtr entryIn(const std::string& bytes) {
    GKeyFilePtr entry(g_key_file_new());
    if (g_key_file_load_from_data(entry.get(), bytes.data(), bytes.size(), G_KEY_FILE_NONE,
                                  nullptr) == FALSE)
        entry.reset();
    return entry;
}

/// Without a carriage return at its end, which becomes part of the line's end when it is written.
std::string valueOf(GKeyFile* entry, const char* group, const char* key) {
    const GCharsPtr value(g_key_file_get_value(entry, group, key, nullptr));
    std::string text = value ? value.get() : "";
    text.resize(text.find_last_not_of('\r') + 1);
    return text;
}

/// What the entry had in other groups is there still.
void expectKept(GKeyFile* before, GKeyFile* after) {
    const GStringsPtr groups(g_key_file_get_groups(before, nullptr));
    for (gchar** group = groups.get(); *group != nullptr; ++group) {
        if (std::string_view(*group) == G_KEY_FILE_DESKTOP_GROUP)
            continue;
        const GStringsPtr keys(g_key_file_get_keys(before, *group, nullptr, nullptr));
        for (gchar** key = keys.get(); key != nullptr && *key != nullptr; ++key)
            expect(valueOf(before, *group, *key) == valueOf(after, *group, *key));
    }
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

/// The first line is the program, the others are the entry.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const DrillFolder folder("/dev/shm");
    static const auto file = folder.path() / "autostart" / "com.veltran.QuorvaApp.desktop";
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto lineEnd = std::min(bytes.find('\n'), bytes.size());
    const auto program = "/" + bytes.substr(0, std::min(lineEnd, bytes.find('\0')));
    const auto stored = bytes.substr(std::min(lineEnd + 1, bytes.size()));
    expect(programOf(AutostartEntry::execOf(program)) == program);

    std::filesystem::remove_all(file.parent_path());
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << stored;
    const AutostartEntry entry(folder.path(), program);
    const auto status = entry.status();
    expect(status != LoginItemStatus::requiresApproval);
    const bool isEntry = status != LoginItemStatus::notFound;
    const bool isUtf8 = g_utf8_validate(program.c_str(), -1, nullptr) != FALSE;

    if (const auto problem = entry.enable()) {
        expect(!isUtf8 || !isEntry);
        return 0;
    }
    expect(entry.status() == LoginItemStatus::enabled);
    const auto written = entryIn(contentOf(file));
    expect(written != nullptr);
    const GCharsPtr exec(g_key_file_get_string(written.get(), G_KEY_FILE_DESKTOP_GROUP,
                                               G_KEY_FILE_DESKTOP_KEY_EXEC, nullptr));
    if (isUtf8)
        expect(exec && programOf(exec.get()) == program);
    const auto before = entryIn(stored);
    if (isEntry && before)
        expectKept(before.get(), written.get());
    const auto files = std::filesystem::directory_iterator(file.parent_path());
    const auto isAside = [&](const auto& each) { return contentOf(each.path()) == stored; };
    if (!isEntry && !stored.empty())
        expect(std::any_of(begin(files), end(files), isAside));
    expect(!entry.remove() && entry.status() == LoginItemStatus::notRegistered);
    return 0;
}
