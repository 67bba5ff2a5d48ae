// Parses any bytes as the texts of /proc, the names of systemd's units and desktop entries. The
// results are valid text and parts of the input.
#include "Expect.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/Utf8.h"
#include "platform/linux/processes/DesktopEntry.h"
#include "platform/linux/processes/ProcFormats.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

using namespace quorva;

namespace {

/// Parses the bytes as a program's name, which may contain the characters that end it.
void readStat(const std::string& bytes) {
    if (const auto any = parseStat(bytes))
        expect(bytes.find(") ") != std::string::npos);
    const auto stat = "12 (" + bytes + ") S 34 1 1 0 -1 4194560 1 0 0 0 1 2 0 0 20 0 1 0 56 7 8";
    const auto own = parseStat(stat);
    expect(own && own->parent == 34 && own->startTicks == 56);
}

void readCommand(const std::string& bytes) {
    const auto arguments = splitAtZeros(bytes);
    std::string joined;
    for (const auto argument : arguments)
        joined.append(argument).append(1, '\0');
    expect(joined == bytes || joined == bytes + '\0');

    for (const char* const interpreter : {"/usr/bin/python3.11", "/bin/sh", "/usr/bin/java"}) {
        const auto script = scriptOfCommand(interpreter, arguments);
        if (!script)
            continue;
        expectText(*script);
        expect(std::any_of(arguments.begin() + 1, arguments.end(), [&](std::string_view argument) {
            return argument.starts_with('/') && validUtf8(argument) == *script;
        }));
    }
    expect(!scriptOfCommand("/usr/bin/vi", arguments));
    expectText(executableOfLink(bytes));
    const auto path = validUtf8(bytes);
    const auto name = nameOfAppImage(path);
    expectText(name);
    expect(path.find(name) != std::string::npos);
}

/// The id as systemd escapes it in a unit's name.
std::string escaped(const std::string& id) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const char character : id) {
        const auto byte = static_cast<unsigned char>(character);
        text += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
    }
    return text;
}

void readUnit(const std::string& bytes) {
    for (const auto& unit : {bytes, bytes + ".scope", "app-" + bytes + ".service"})
        if (const auto any = applicationOfUnit(unit)) {
            expect(!any->id.empty());
            expectText(any->id);
        }
    if (bytes.empty() || bytes.find('\0') != std::string::npos)
        return;
    using Kind = UnitApplication::Kind;
    const UnitApplication entry{Kind::desktopEntry, validUtf8(bytes)};
    const auto id = escaped(bytes);
    expect(applicationOfUnit("app-gnome-" + id + "-12.scope") == entry);
    expect(applicationOfUnit("app-gnome-" + id + "@12.service") == entry);
    expect(applicationOfUnit("snap." + id + ".name.scope") ==
           UnitApplication{Kind::snap, validUtf8(bytes)});
}

void readEntry(const std::string& bytes) {
    const auto entry = parseDesktopEntry("id", bytes);
    if (!entry)
        return;
    expect(entry->id == "id" && entry->name != "");
    expectText(entry->name.value_or(""));
    std::ranges::for_each(entry->command, expectText);
    if (const auto program = programOf(entry->command))
        expect(std::ranges::find(entry->command, program->path) != entry->command.end());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    readStat(bytes);
    readCommand(bytes);
    readUnit(bytes);
    readEntry(bytes);
    return 0;
}
