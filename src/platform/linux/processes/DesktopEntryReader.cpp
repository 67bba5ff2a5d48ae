#include "platform/linux/processes/DesktopEntryReader.h"

#include "platform/linux/glib/FileStamps.h"
#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/glib/Utf8.h"
#include "platform/linux/processes/ProcFormats.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <unistd.h>

namespace quorva {
namespace {

constexpr std::size_t largestEntry = std::size_t{1024} * 1024;
constexpr std::size_t mostFiles = 10'000;
constexpr int deepestFolder = 8;
constexpr Seconds comparisonPeriod{300};
constexpr std::chrono::nanoseconds stampGranularity = std::chrono::seconds(2);

std::string reasonOf(const std::error_code& error) {
    if (error == std::errc::file_too_large)
        return "larger than 1 MiB";
    if (error == std::errc::invalid_argument)
        return "not a regular file";
    return error.message();
}

} // namespace

/// What one reading comes to, in place of what the one before came to.
struct DesktopEntryReader::Pass {
    Time now;
    bool comparesAll = false;
    std::map<std::filesystem::path, Folder> folders;
    std::map<std::filesystem::path, File> files;
    std::vector<InstalledEntry> entries;
    std::set<std::string> ids;
    std::set<std::pair<std::uint64_t, std::uint64_t>> visited; ///< device and inode of folders
    std::size_t listed = 0; ///< files of any kind, in folders that were listed again
    std::vector<LeftOutEntry> leftOut;
};

DesktopEntryReader::DesktopEntryReader(DesktopEntryPlaces places_) : places(std::move(places_)) {}

DesktopEntryReader::Reading DesktopEntryReader::read(Time now) {
    const bool isDue = !lastComparison || now - *lastComparison >= comparisonPeriod;
    if (!isDue && !hasChanged(now))
        return last;
    Pass pass{.now = now, .comparesAll = isDue};
    for (const auto& folder : places.folders)
        readFolder(folder, "", 0, pass);
    if (isDue)
        lastComparison = now;
    folders = std::move(pass.folders);
    files = std::move(pass.files);
    last.leftOut = std::move(pass.leftOut);
    if (!last.index || last.index->entries() != pass.entries)
        last.index = std::make_shared<const DesktopEntryIndex>(std::move(pass.entries));
    return last;
}

DesktopEntryReader::Seen DesktopEntryReader::look(const std::filesystem::path& path, Time now) {
    std::error_code missing;
    const auto stamp = stampAt(path, missing);
    const auto age = now.time_since_epoch() - std::chrono::nanoseconds(stamp ? stamp->modified : 0);
    return {stamp, age >= stampGranularity || age <= -stampGranularity};
}

bool DesktopEntryReader::hasChanged(Time now) const {
    return std::any_of(folders.begin(), folders.end(), [&](const auto& known) {
        const auto& [path, folder] = known;
        return !folder.seen.isSettled || look(path, now).stamp != folder.seen.stamp;
    });
}

void DesktopEntryReader::readFolder(const std::filesystem::path& path, const std::string& idPrefix,
                                    int depth, Pass& pass) {
    const auto seen = look(path, pass.now);
    auto& folder = pass.folders.try_emplace(path, Folder{.seen = seen}).first->second;
    if (!seen.stamp)
        return; // missing folders are usual
    if (depth > deepestFolder ||
        !pass.visited.emplace(seen.stamp->device, seen.stamp->inode).second)
        return; // a link that leads back here
    const auto known = folders.find(path);
    const bool isSame = known != folders.end() && known->second.seen.isSettled &&
                        known->second.seen.stamp == seen.stamp;
    folder = isSame && !pass.comparesAll ? known->second : list(path, seen, pass);
    if (!folder.problem.empty())
        pass.leftOut.push_back({path, folder.problem});
    for (const auto& each : folder.contents)
        if (each.extension() == ".desktop")
            readEntry(each, validUtf8(idPrefix + each.stem().string()), isSame && !pass.comparesAll,
                      pass);
        else
            readFolder(each, idPrefix + each.filename().string() + "-", depth + 1, pass);
}

DesktopEntryReader::Folder DesktopEntryReader::list(const std::filesystem::path& path,
                                                    const Seen& seen, Pass& pass) {
    Folder folder{.seen = seen};
    std::error_code error;
    std::filesystem::directory_iterator at(path, error);
    for (; !error && at != std::filesystem::directory_iterator(); at.increment(error)) {
        if (++pass.listed > mostFiles) {
            folder.problem = "there are more than 10,000 files";
            break;
        }
        std::error_code ignored;
        if (at->path().extension() == ".desktop" || at->is_directory(ignored))
            folder.contents.push_back(at->path());
    }
    if (error)
        folder.problem = error.message();
    std::sort(folder.contents.begin(), folder.contents.end());
    return folder;
}

/// `isTrusted`: the file is known to be as it was before, if it was known then.
void DesktopEntryReader::readEntry(const std::filesystem::path& path, const std::string& id,
                                   bool isTrusted, Pass& pass) {
    if (pass.ids.contains(id))
        return; // an earlier folder's entry wins
    const auto known = files.find(path);
    const bool isKnown = known != files.end() && known->second.seen.isSettled;
    File file;
    if (isKnown && isTrusted)
        file = known->second;
    else if (const auto seen = look(path, pass.now);
             isKnown && seen.stamp && known->second.seen.stamp == seen.stamp) {
        file = known->second;
    } else {
        file.seen = seen;
        std::error_code error;
        const auto bytes = readWholeFile(path, largestEntry, error);
        file.entry = bytes ? parseDesktopEntry(id, *bytes) : std::nullopt;
        if (!file.entry)
            file.problem = bytes ? "not a desktop entry" : reasonOf(error);
    }
    if (file.entry) {
        pass.ids.insert(id);
        pass.entries.push_back({*file.entry, installedProgram(*file.entry)});
    } else {
        pass.leftOut.push_back({path, file.problem});
    }
    pass.files.insert_or_assign(path, std::move(file));
}

/// The program that an entry's command starts: a name is looked for in the search path.
std::optional<EntryProgram> DesktopEntryReader::installedProgram(const DesktopEntry& entry) const {
    const auto program = entry.isHidden ? std::nullopt : programOf(entry.command);
    if (!program)
        return std::nullopt;
    std::filesystem::path path = program->path;
    if (program->path.find('/') == std::string::npos) {
        const auto found = std::find_if(
            places.searchPath.begin(), places.searchPath.end(),
            [&](const auto& folder) { return ::access((folder / path).c_str(), X_OK) == 0; });
        if (found == places.searchPath.end())
            return std::nullopt;
        path = *found / path;
    }
    if (!path.is_absolute())
        return std::nullopt;
    std::error_code error;
    const auto real = std::filesystem::canonical(path, error);
    auto resolved = error ? path.lexically_normal().string() : real.string();
    if (isLauncher(resolved) || isInterpreter(resolved))
        return std::nullopt;
    return EntryProgram{std::move(resolved), program->isAlone};
}

} // namespace quorva
