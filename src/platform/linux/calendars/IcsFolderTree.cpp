#include "platform/linux/calendars/IcsFolderTree.h"

#include "base/Text.h"
#include "platform/linux/calendars/CalendarProviders.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/glib/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace quorva {
namespace {

constexpr int maxDepth = 4;
constexpr std::size_t maxFolders = 1'000;
constexpr auto fullLookPeriod = std::chrono::minutes(10);

/// A file name, or a name from a file, as valid UTF-8 without surrounding white space.
std::string validName(const std::string& bytes) {
    return std::string(trimmed(validUtf8(bytes)));
}

/// The name in a calendar's "displayname" file; absent without one.
std::optional<std::string> displayNameIn(const std::filesystem::path& folder) {
    constexpr std::size_t maxFileSize = 65'536;
    constexpr std::size_t maxNameSize = 500;
    std::error_code ignored;
    const auto content = readWholeFile(folder / "displayname", maxFileSize, ignored);
    const auto name = validName(content.value_or("").substr(0, maxNameSize));
    return name.empty() ? std::nullopt : std::optional(name);
}

bool isCalendarFile(std::string_view name) {
    return name.ends_with(".ics") && !name.starts_with('.');
}

bool isFolder(int directory, const dirent& entry) {
    if (entry.d_type == DT_DIR)
        return true;
    struct stat status {};
    return (entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN) &&
           ::fstatat(directory, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

IcsCalendar IcsFolder::calendar() const {
    return {name, icsIdentifier + place.native() + "/"};
}

IcsCalendar IcsFolder::calendarOf(const std::string& fileName) const {
    auto whole = calendar();
    if (!isOfFiles)
        return whole;
    return {validName(std::filesystem::path(fileName).stem()), whole.identifier + fileName + "/"};
}

IcsFolderTree::IcsFolderTree(IcsPlaces places_, const std::atomic<bool>& isAbandoned_)
    : places(std::move(places_)), isAbandoned(isAbandoned_) {}

// --- which folders there are

void IcsFolderTree::walk(const IcsHints& hints) {
    const auto now = std::chrono::system_clock::now();
    if (now >= nextFullLook) {
        nextFullLook = now + fullLookPeriod;
        for (auto& [path, folder] : all)
            folder.mustStatFiles = true;
    }

    watched.clear();
    Walk walk{hints, {}};
    if (!places.root.empty()) {
        visit(places.root, 0, walk);
        if (const auto root = all.find(places.root); root != all.end()) {
            root->second.isOfFiles = true;
            root->second.isRequired = false;
        }
    }
    for (const auto& place : places.folders) {
        std::error_code ignored;
        if (isCalendarFile(place.filename().native()) &&
            !std::filesystem::is_directory(place, ignored))
            visitFile(place, walk);
        else
            visit(place, 1, walk);
    }
    if (std::erase_if(all, [&](const auto& each) { return !walk.seen.contains(each.first); }) > 0)
        ++currentRevision;
}

void IcsFolderTree::visit(const Path& path, int depth, Walk& walk) {
    if (depth > maxDepth || walk.seen.size() >= maxFolders || !walk.seen.insert(path).second)
        return;
    auto& folder = all.try_emplace(path, IcsFolder{.place = path, .path = path}).first->second;
    const bool isHinted = walk.hints.changed.contains(path) || !walk.hints.watched.contains(path);
    folder.mustStatFiles = folder.mustStatFiles || isHinted;

    struct stat status {};
    int error = ::stat(path.c_str(), &status) != 0 ? errno : 0;
    if (error == 0 && !S_ISDIR(status.st_mode))
        error = ENOTDIR;
    if (error != 0) {
        if (error == ENOENT)
            await(path);
        if (!folder.files.empty())
            ++currentRevision;
        folder = {
            .place = path, .path = path, .error = std::strerror(error), .name = path.filename()};
        return;
    }
    const auto stamp = stampOf(status);
    if (stamp != folder.stamp || !folder.isSettled || isHinted || folder.error) {
        folder.stamp = stamp;
        folder.isSettled = !mayChangeUnnoticed(stamp.modified);
        folder.mustStatFiles = true;
        list(folder);
    }
    watched.push_back({path, std::nullopt});
    for (const auto& name : folder.subfolders)
        visit(path / name, depth + 1, walk);
}

void IcsFolderTree::list(IcsFolder& folder) {
    const DirectoryPtr directory(::opendir(folder.path.c_str()));
    folder.error = directory ? std::nullopt : std::optional<std::string>(std::strerror(errno));
    const auto oldName = std::exchange(
        folder.name, displayNameIn(folder.path).value_or(validName(folder.path.filename())));
    folder.subfolders.clear();
    std::set<std::string> present;
    while (directory) {
        const auto* const entry = ::readdir(directory.get());
        if (!entry)
            break;
        const std::string name = entry->d_name;
        if (name.starts_with('.'))
            continue;
        if (isFolder(::dirfd(directory.get()), *entry))
            folder.subfolders.push_back(name);
        else if (isCalendarFile(name))
            present.insert(name);
    }
    std::sort(folder.subfolders.begin(), folder.subfolders.end());
    const auto gone = std::erase_if(
        folder.files, [&](const auto& file) { return !present.contains(file.first); });
    if (gone > 0 || folder.name != oldName)
        ++currentRevision;
    for (const auto& name : present)
        folder.files.try_emplace(name);
}

/// A place that is a single file gets a folder of its own, which is never listed.
void IcsFolderTree::visitFile(const Path& path, Walk& walk) {
    if (!walk.seen.insert(path).second)
        return;
    const auto parent = path.parent_path();
    const auto [known, isNew] = all.try_emplace(path, IcsFolder{.place = path, .path = parent});
    auto& folder = known->second;
    if (isNew) {
        folder.name = validName(path.stem());
        folder.files.try_emplace(path.filename());
    }
    folder.mustStatFiles = folder.mustStatFiles || walk.hints.changed.contains(parent) ||
                           !walk.hints.watched.contains(parent);
    watched.push_back({parent, std::nullopt});
    std::error_code ignored;
    if (!std::filesystem::exists(parent, ignored))
        await(path);
}

/// Watches for the first folder that is missing on the way to `path`.
void IcsFolderTree::await(const Path& path) {
    std::error_code ignored;
    auto missing = path;
    while (missing.has_relative_path() && !std::filesystem::exists(missing.parent_path(), ignored))
        missing = missing.parent_path();
    watched.push_back({missing.parent_path(), missing.filename()});
}

std::vector<CalendarSource> IcsFolderTree::sources() const {
    std::vector<CalendarSource> sources;
    const auto add = [&](const std::string& title) {
        sources.push_back({.title = title, .provider = providerNamed(title)});
    };
    for (const auto& [path, folder] : all) {
        if (folder.isCalendar() && (!folder.error || folder.isRequired))
            add(folder.name);
        if (folder.isOfFiles)
            for (const auto& [name, file] : folder.files)
                add(folder.calendarOf(name).name);
    }
    return sources;
}

// --- what the files hold

void IcsFolderTree::readFiles() {
    followUserZone();
    isHalfWritten = false;
    for (auto& [path, folder] : all)
        if (folder.mustStatFiles || folder.hasUnsettledFiles) // however many files there are
            readFiles(folder);
}

/// Files are read for the user's time zone, and read again when that changes.
void IcsFolderTree::followUserZone() {
    auto [zone, name] = userZone();
    if (reading.floating && name == zoneName)
        return;
    reading.floating = std::move(zone);
    zoneName = std::move(name);
    for (auto& [path, folder] : all) {
        folder.mustStatFiles = true;
        for (auto& [fileName, file] : folder.files)
            file.invalidate();
    }
}

void IcsFolderTree::readFiles(IcsFolder& folder) {
    const bool mustStat = std::exchange(folder.mustStatFiles, false);
    folder.hasUnsettledFiles = false;
    for (auto& [name, file] : folder.files) {
        if (isAbandoned)
            return;
        if ((mustStat || !file.isSettled()) && file.refresh(folder.path / name, reading)) {
            ++readCount;
            ++currentRevision;
        }
        folder.hasUnsettledFiles = folder.hasUnsettledFiles || !file.isSettled();
        isHalfWritten = isHalfWritten || file.isHalfWritten();
    }
}

} // namespace quorva
