#include "platform/linux/processes/ProcFormats.h"

#include "base/Text.h"
#include "platform/linux/glib/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

namespace quorva {
namespace {

template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

/// The options of an interpreter that matter for finding its script.
struct Interpreter {
    std::string_view name; ///< without version
    std::array<std::string_view, 4>
        inlineOptions; ///< what follows is code or a module, not a script
    std::array<std::string_view, 6> valuedOptions; ///< take the next argument for themselves
};

// clang-format off
constexpr Interpreter interpreters[] = {
    {"sh",       {"-c"},                    {"-o", "+o"}},
    {"bash",     {"-c"},                    {"-o", "+o", "-O", "+O", "--rcfile", "--init-file"}},
    {"dash",     {"-c"},                    {"-o", "+o"}},
    {"zsh",      {"-c"},                    {"-o", "+o"}},
    {"ksh",      {"-c"},                    {"-o", "+o"}},
    {"fish",     {"-c", "--command"},       {"-C", "--init-command"}},
    {"python",   {"-c", "-m"},              {"-W", "-X"}},
    {"pypy",     {"-c", "-m"},              {"-W", "-X"}},
    {"perl",     {"-e", "-E"},              {}},
    {"ruby",     {"-e"},                    {"-r", "-I", "-C"}},
    {"php",      {"-r"},                    {"-c", "-d"}},
    {"lua",      {"-e"},                    {"-l"}},
    {"node",     {"-e", "--eval", "-p", "--print"}, {"-r", "--require", "--import", "--loader", "-C"}},
    {"nodejs",   {"-e", "--eval", "-p", "--print"}, {"-r", "--require", "--import", "--loader", "-C"}},
    {"bun",      {"-e", "--eval"},          {"-r", "--preload"}},
    {"electron", {},                        {"-r", "--require"}},
    {"java",     {},                        {"-cp", "-classpath", "--class-path", "-p", "--module-path", "--add-modules"}},
    {"mono",     {},                        {}},
    {"dotnet",   {},                        {}},
    {"gjs",      {"-c", "--command"},       {"-I", "--include-path"}},
    {"gjs-console", {"-c", "--command"},    {"-I", "--include-path"}},
};
// clang-format on

const Interpreter* interpreterOf(std::string_view path) {
    auto name = lastPathComponent(path);
    const auto end = name.find_last_not_of("0123456789.-");
    name = name.substr(0, end == std::string_view::npos ? 0 : end + 1);
    const auto* const found = std::find_if(std::begin(interpreters), std::end(interpreters),
                                           [&](const Interpreter& i) { return i.name == name; });
    return found == std::end(interpreters) ? nullptr : found;
}

bool contains(std::span<const std::string_view> options, std::string_view argument) {
    return !argument.empty() &&
           std::find(options.begin(), options.end(), argument) != options.end();
}

/// Undoes systemd's escapes of special bytes in a unit's name: "\x2d" is a "-".
std::string unescapeUnit(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        int byte = 0;
        const auto* const digits = text.data() + i + 2;
        if (text.substr(i, 2) == "\\x" && i + 4 <= text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2 && byte != 0) {
            plain += static_cast<char>(byte);
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

std::string joined(std::span<const std::string_view> parts) {
    std::string text;
    for (const auto part : parts)
        text.append(text.empty() ? "" : "-").append(part);
    return text;
}

} // namespace

std::optional<Ancestry> parseStat(std::string_view stat) {
    // The second field, the name in parentheses, can hold anything; the last ")" ends it.
    const auto nameEnd = stat.rfind(") ");
    if (nameEnd == std::string_view::npos)
        return std::nullopt;
    const auto fields = split(stat.substr(nameEnd + 2), ' '); // from the third field on
    if (fields.size() < 20)
        return std::nullopt;
    const auto parent = parseNumber<std::int32_t>(fields[1]);
    const auto start = parseNumber<std::uint64_t>(fields[19]);
    if (!parent || !start)
        return std::nullopt;
    return Ancestry{*parent, *start};
}

std::string executableOfLink(std::string_view link) {
    constexpr std::string_view deleted = " (deleted)";
    if (link.ends_with(deleted))
        link.remove_suffix(deleted.size());
    return validUtf8(link);
}

std::vector<std::string_view> splitAtZeros(std::string_view bytes) {
    if (bytes.empty())
        return {};
    if (bytes.back() == '\0')
        bytes.remove_suffix(1);
    return split(bytes, '\0');
}

bool isInterpreter(std::string_view executablePath) {
    return interpreterOf(executablePath) != nullptr;
}

std::optional<std::string> scriptOfCommand(std::string_view interpreterPath,
                                           const std::vector<std::string_view>& arguments) {
    const auto* const interpreter = interpreterOf(interpreterPath);
    if (!interpreter)
        return std::nullopt;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const auto argument = arguments[i];
        if (contains(interpreter->inlineOptions, argument))
            return std::nullopt;
        if (contains(interpreter->valuedOptions, argument))
            ++i;
        else if (argument.starts_with('/'))
            return validUtf8(argument);
        else if (!argument.starts_with('-') && !argument.starts_with('+'))
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<UnitApplication> applicationOfUnit(std::string_view unitName) {
    const auto dot = unitName.rfind('.');
    const auto type = unitName.substr(dot == std::string_view::npos ? unitName.size() : dot);
    if (type != ".scope" && type != ".service")
        return std::nullopt;
    const auto name = unitName.substr(0, dot);

    if (name.starts_with("snap.")) {
        const auto snap = split(name, '.')[1];
        if (snap.empty())
            return std::nullopt;
        return UnitApplication{UnitApplication::Kind::snap, validUtf8(unescapeUnit(snap))};
    }

    const auto parts = split(name.substr(0, name.find('@')), '-');
    if (parts.front() != "app")
        return std::nullopt;
    std::span id(parts.begin() + 1, parts.end());
    if (type == ".scope" && !id.empty())
        id = id.first(id.size() - 1); // RANDOM
    if (id.size() > 1)
        id = id.subspan(1); // LAUNCHER
    auto text = validUtf8(unescapeUnit(joined(id)));
    if (text.empty())
        return std::nullopt;
    return UnitApplication{UnitApplication::Kind::desktopEntry, std::move(text)};
}

std::string nameOfAppImage(std::string_view path) {
    auto name = lastPathComponent(path);
    if (lowerCased(name).ends_with(".appimage"))
        name.remove_suffix(std::string_view(".appimage").size());
    for (std::size_t i = 1; i + 1 < name.size(); ++i) {
        const auto rest = name.substr(i + 1);
        const bool isVersion = rest[0] >= '0' && rest[0] <= '9';
        const bool isArchitecture = rest.starts_with("x86_64") || rest.starts_with("x64") ||
                                    rest.starts_with("amd64") || rest.starts_with("aarch64") ||
                                    rest.starts_with("arm64") || rest.starts_with("armhf") ||
                                    rest.starts_with("i386");
        if ((name[i] == '-' || name[i] == '_') && (isVersion || isArchitecture))
            return std::string(name.substr(0, i));
    }
    return std::string(name);
}

} // namespace quorva
