#include "platform/linux/processes/DesktopEntries.h"

#include "base/Text.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/glib/Utf8.h"
#include "platform/linux/processes/ProcFormats.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sys/stat.h>

namespace quorva {
namespace {

constexpr std::size_t largestEntry = std::size_t{1024} * 1024;
constexpr int deepestFolder = 8;
constexpr Seconds readAgainAfter{300};
constexpr std::int64_t stampGranularity = 2'000'000'000; // ns

/// Programs that start something else: an entry whose command names one is not about it.
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

/// Folders in which each vendor has one of its own.
constexpr std::array vendorRoots{
    std::string_view("/opt/"),
    std::string_view("/usr/lib/"),
    std::string_view("/usr/local/lib/"),
    std::string_view("/usr/share/"),
};

bool isLauncher(std::string_view program) {
    return std::find(launchers.begin(), launchers.end(), lastPathComponent(program)) !=
           launchers.end();
}

bool isFieldCode(std::string_view argument) {
    return argument.size() == 2 && argument[0] == '%';
}

/// The folder that belongs to a program's product alone, with a "/" at its end; empty when the
/// program lies among others.
std::string_view ownFolderOf(std::string_view program) {
    for (const auto root : vendorRoots) {
        if (!program.starts_with(root))
            continue;
        auto folder = program.substr(0, program.rfind('/') + 1);
        for (const std::string_view shared : {"/bin/", "/sbin/"})
            if (folder.ends_with(shared))
                folder.remove_suffix(shared.size() - 1);
        const bool isCommon = folder.size() <= root.size() || folder.ends_with("-linux-gnu/");
        return isCommon ? std::string_view{} : folder;
    }
    return {};
}

std::int64_t modificationTime(const std::filesystem::path& folder) {
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0)
        return -1;
    return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
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

std::vector<std::filesystem::path> splitPath(std::string_view text) {
    std::vector<std::filesystem::path> paths;
    while (!text.empty()) {
        const auto end = std::min(text.find(':'), text.size());
        if (end > 0 && text[0] == '/')
            paths.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return paths;
}

std::string reasonOf(const std::error_code& error) {
    if (error == std::errc::file_too_large)
        return "larger than 1 MiB";
    if (error == std::errc::invalid_argument)
        return "not a regular file";
    return error.message();
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

DesktopEntries::Places DesktopEntries::standardPlaces() {
    Places places;
    const std::filesystem::path home = g_get_user_data_dir();
    std::vector<std::filesystem::path> data{home};
    for (const auto* const* folder = g_get_system_data_dirs(); *folder; ++folder)
        data.emplace_back(*folder);
    data.push_back(home / "flatpak/exports/share");
    data.emplace_back("/var/lib/flatpak/exports/share");
    data.emplace_back("/var/lib/snapd/desktop");
    for (const auto& folder : data) {
        const auto applications = (folder / "applications").lexically_normal();
        if (std::find(places.folders.begin(), places.folders.end(), applications) ==
            places.folders.end())
            places.folders.push_back(applications);
    }
    const auto* const path = g_getenv("PATH");
    places.searchPath = splitPath(path ? path : "/usr/local/bin:/usr/bin:/bin");
    return places;
}

DesktopEntries::DesktopEntries(MainLoop& loop_, Log& log_, Places places_)
    : loop(loop_), log(log_), places(std::move(places_)) {}

void DesktopEntries::refresh() {
    if (isOutdated())
        readAll();
}

const DesktopEntry* DesktopEntries::byId(std::string_view id) const {
    const auto found = entries.find(id);
    return found == entries.end() || found->second.isHidden ? nullptr : &found->second;
}

const DesktopEntry* DesktopEntries::bySnap(std::string_view snap) const {
    const auto name = std::string(snap);
    if (const auto* const same = byId(name + "_" + name))
        return same;
    const auto first = entries.lower_bound(name + "_");
    const bool isOfSnap = first != entries.end() && first->first.starts_with(name + "_");
    return isOfSnap && !first->second.isHidden ? &first->second : nullptr;
}

const DesktopEntry* DesktopEntries::byProgram(std::string_view program) const {
    if (const auto exact = programs.find(program); exact != programs.end())
        return exact->second.entry;
    if (ownFolderOf(program).empty())
        return nullptr;
    for (auto folder = program; !folder.empty(); folder.remove_suffix(1)) {
        folder = folder.substr(0, folder.rfind('/') + 1);
        if (folder.empty())
            break;
        if (const auto owner = ownFolders.find(folder); owner != ownFolders.end())
            return owner->second.entry;
    }
    return nullptr;
}

/// A folder changed so shortly before it was read that its time could not tell a later change apart
/// counts as outdated.
bool DesktopEntries::isOutdated() const {
    if (!lastRead || loop.now() - *lastRead >= readAgainAfter)
        return true;
    const auto read =
        std::chrono::duration_cast<std::chrono::nanoseconds>(lastRead->time_since_epoch()).count();
    return std::any_of(stamps.begin(), stamps.end(), [&](const auto& stamp) {
        const auto& [folder, changed] = stamp;
        return std::abs(changed - read) < stampGranularity || modificationTime(folder) != changed;
    });
}

void DesktopEntries::readAll() {
    lastRead = loop.now();
    programs.clear();
    ownFolders.clear();
    order.clear();
    entries.clear();
    stamps.clear();
    std::set<std::pair<std::uint64_t, std::uint64_t>> visited;
    for (const auto& folder : places.folders)
        readFolder(folder, "", 0, visited);
    indexPrograms();
}

void DesktopEntries::readFolder(const std::filesystem::path& folder, const std::string& idPrefix,
                                int depth,
                                std::set<std::pair<std::uint64_t, std::uint64_t>>& visited) {
    stamps.emplace(folder, modificationTime(folder));
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0)
        return; // missing folders are usual
    if (depth > deepestFolder || !visited.emplace(status.st_dev, status.st_ino).second)
        return; // a link that leads back here
    std::error_code error;
    std::vector<std::filesystem::path> files;
    for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
         at.increment(error))
        files.push_back(at->path());
    if (error)
        complainOnce(folder, error.message());
    std::sort(files.begin(), files.end());

    for (const auto& file : files) {
        const auto name = file.filename().string();
        if (file.extension() == ".desktop")
            readEntry(file, validUtf8(idPrefix + file.stem().string()));
        else if (std::filesystem::is_directory(file, error))
            readFolder(file, idPrefix + name + "-", depth + 1, visited);
    }
}

void DesktopEntries::readEntry(const std::filesystem::path& file, const std::string& id) {
    if (entries.contains(id))
        return; // an earlier folder's entry wins
    std::error_code error;
    const auto bytes = readWholeFile(file, largestEntry, error);
    if (!bytes)
        return complainOnce(file, reasonOf(error));
    auto entry = parseDesktopEntry(id, *bytes);
    if (!entry)
        return complainOnce(file, "not a desktop entry");
    entries.emplace(id, std::move(*entry));
    order.push_back(id);
}

/// Notes which entry stands for which program. Where several do, one whose command is the program
/// alone comes before one that gives it arguments (a web page, a mode), then the one found first.
void DesktopEntries::indexPrograms() {
    const auto claim = [](TextMap<Claim>& claims, std::string key, const Claim& next) {
        const auto [at, isNew] = claims.try_emplace(std::move(key), next);
        if (!isNew && next.isAlone && !at->second.isAlone)
            at->second = next;
    };
    for (const auto& id : order) {
        const auto& entry = entries.at(id);
        const auto program = entry.isHidden ? std::nullopt : programOf(entry.command);
        const auto path = program ? resolve(program->path) : std::nullopt;
        if (!path)
            continue;
        claim(programs, *path, {&entry, program->isAlone});
        if (const auto folder = ownFolderOf(*path); !folder.empty())
            claim(ownFolders, std::string(folder), {&entry, program->isAlone});
    }
}

/// The file that a command's first word starts, links followed.
std::optional<std::string> DesktopEntries::resolve(const std::string& program) const {
    std::filesystem::path path = program;
    if (program.find('/') == std::string::npos) {
        const auto found = std::find_if(
            places.searchPath.begin(), places.searchPath.end(),
            [&](const auto& folder) { return ::access((folder / program).c_str(), X_OK) == 0; });
        if (found == places.searchPath.end())
            return std::nullopt;
        path = *found / program;
    }
    if (!path.is_absolute())
        return std::nullopt;
    std::error_code error;
    const auto real = std::filesystem::canonical(path, error);
    auto resolved = error ? path.lexically_normal().string() : real.string();
    if (isLauncher(resolved) || isInterpreter(resolved))
        return std::nullopt;
    return resolved;
}

void DesktopEntries::complainOnce(const std::filesystem::path& file, std::string_view reason) {
    if (complainedOf.insert(file).second)
        log.notice(fmt::format("{} is left out: {}", file.string(), reason), logCategory::appState);
}

} // namespace quorva
