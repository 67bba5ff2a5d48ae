#include "platform/linux/calendars/IcsFolders.h"

#include "platform/linux/calendars/IcsFolderRecords.h"
#include "platform/linux/glib/Handles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace quorva {
namespace {

constexpr int maxDepth = 4;
constexpr std::size_t maxFolders = 1'000;
constexpr std::int64_t stepsOfLook = 50'000'000;     // seconds of computing, whatever the files say
constexpr auto clockGrain = std::chrono::seconds(2); // of the coarsest file system clocks
constexpr auto writingTime = std::chrono::seconds(5);
constexpr auto fullLookPeriod = std::chrono::minutes(10);

IcsStamp stampOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size,
            Time(std::chrono::seconds(status.st_mtim.tv_sec) +
                 std::chrono::nanoseconds(status.st_mtim.tv_nsec))};
}

/// Whether what changed at `modified` may change again without the stamp telling.
bool isWithin(Time modified, Time now, std::chrono::seconds span) {
    return modified > now - span && modified < now + span;
}

Time clockNow() {
    return std::chrono::system_clock::now();
}

std::optional<std::string> readAll(int fd, std::size_t size) {
    std::string bytes(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const auto count = ::read(fd, bytes.data() + done, size - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return bytes;
}

/// The name in a calendar's "displayname" file; nothing without one.
std::optional<std::string> displayNameIn(const std::filesystem::path& folder) {
    constexpr std::size_t maxNameSize = 500;
    const FileDescriptor fd(
        ::open((folder / "displayname").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!fd || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    const auto name = validName(readAll(fd.get(), maxNameSize).value_or(""));
    return name.empty() ? std::nullopt : std::optional(name);
}

bool isCalendarFile(std::string_view name) {
    return name.ends_with(".ics") && !name.starts_with('.');
}

} // namespace

IcsFolders::IcsFolders(IcsPlaces places_, std::vector<std::string> userAddresses)
    : places(std::move(places_)), reading{.userAddresses = std::move(userAddresses)} {}

IcsFolders::~IcsFolders() = default;

IcsFolders::Findings IcsFolders::look(Time start, Time end, const Hints& hints) {
    budget.steps = stepsOfLook;
    isUnsettled = false;
    followUserZone();
    walk(hints);
    for (auto& [path, folder] : folders)
        refreshFiles(*folder);
    cover(start, end);
    Findings findings;
    collect(start, end, findings.window);
    report(findings.window);
    findings.sources = sources();
    findings.watch = watch;
    findings.isUnsettled = isUnsettled;
    return findings;
}

IcsFolders::Findings IcsFolders::list() {
    walk({});
    return {.sources = sources(), .watch = watch};
}

// --- which folders there are

void IcsFolders::walk(const Hints& hints) {
    watch.clear();
    std::set<Path> seen;
    const bool isFull = clockNow() >= nextFullLook;
    if (isFull)
        nextFullLook = clockNow() + fullLookPeriod;
    for (auto& [path, folder] : folders)
        folder->mustStat = folder->mustStat || isFull;

    if (!places.root.empty()) {
        visit(places.root, 0, hints, seen);
        if (const auto root = folders.find(places.root); root != folders.end()) {
            root->second->isOfFiles = true;
            root->second->isRequired = false;
        }
    }
    for (const auto& place : places.folders) {
        std::error_code ignored;
        if (isCalendarFile(place.filename().native()) &&
            !std::filesystem::is_directory(place, ignored))
            visitFile(place, hints, seen);
        else
            visit(place, 1, hints, seen);
    }
    const auto gone =
        std::erase_if(folders, [&](const auto& each) { return !seen.contains(each.first); });
    isIndexStale = isIndexStale || gone > 0;
}

void IcsFolders::visit(const Path& path, int depth, const Hints& hints, std::set<Path>& seen) {
    if (depth > maxDepth || seen.size() >= maxFolders || !seen.insert(path).second)
        return;
    auto& folder = folders[path];
    if (!folder) {
        folder = std::make_unique<Folder>();
        folder->path = path;
    }
    const bool isHinted = hints.changed.contains(path) || !hints.watched.contains(path);
    folder->mustStat = folder->mustStat || isHinted;

    struct stat status {};
    const int failed = ::stat(path.c_str(), &status) != 0 ? errno : 0;
    const int error = failed == 0 && !S_ISDIR(status.st_mode) ? ENOTDIR : failed;
    if (error != 0) {
        if (error == ENOENT)
            await(path);
        isIndexStale = isIndexStale || !folder->files.empty();
        *folder = {.path = path, .failure = std::strerror(error), .name = path.filename()};
        return;
    }
    const auto stamp = stampOf(status);
    if (stamp != folder->stamp || !folder->isSettled || isHinted || folder->failure) {
        folder->stamp = stamp;
        folder->isSettled = !isWithin(stamp.modified, clockNow(), clockGrain);
        folder->mustStat = true;
        list(*folder);
    }
    watch.push_back({path, std::nullopt});
    const auto subfolders = folder->subfolders;
    for (const auto& name : subfolders)
        visit(path / name, depth + 1, hints, seen);
}

void IcsFolders::list(Folder& folder) {
    const DirectoryPtr directory(::opendir(folder.path.c_str()));
    folder.failure = directory ? std::nullopt : std::optional<std::string>(std::strerror(errno));
    folder.name = displayNameIn(folder.path).value_or(validName(folder.path.filename()));
    folder.subfolders.clear();
    std::set<std::string> present;
    while (directory) {
        const auto* const entry = ::readdir(directory.get());
        if (!entry)
            break;
        const std::string name = entry->d_name;
        if (name.starts_with('.'))
            continue;
        struct stat status {};
        const bool isFolder =
            entry->d_type == DT_DIR ||
            ((entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) &&
             ::fstatat(::dirfd(directory.get()), entry->d_name, &status, 0) == 0 &&
             S_ISDIR(status.st_mode));
        if (isFolder)
            folder.subfolders.push_back(name);
        else if (isCalendarFile(name))
            present.insert(name);
    }
    std::sort(folder.subfolders.begin(), folder.subfolders.end());
    const auto gone = std::erase_if(
        folder.files, [&](const auto& file) { return !present.contains(file.first); });
    isIndexStale = isIndexStale || gone > 0;
    for (const auto& name : present)
        folder.files.try_emplace(name);
}

/// A place that is a single file: a folder of its own, which nothing is listed for.
void IcsFolders::visitFile(const Path& path, const Hints& hints, std::set<Path>& seen) {
    if (!seen.insert(path).second)
        return;
    auto& folder = folders[path];
    if (!folder) {
        folder = std::make_unique<Folder>();
        folder->path = path.parent_path();
        folder->name = validName(path.stem());
        folder->files.try_emplace(path.filename());
    }
    const auto parent = path.parent_path();
    folder->mustStat =
        folder->mustStat || hints.changed.contains(parent) || !hints.watched.contains(parent);
    watch.push_back({parent, std::nullopt});
    std::error_code ignored;
    if (!std::filesystem::exists(parent, ignored))
        await(path);
}

/// Watches for what is missing on the way to `path`.
void IcsFolders::await(const Path& path) {
    std::error_code ignored;
    auto missing = path;
    while (missing.has_relative_path() && !std::filesystem::exists(missing.parent_path(), ignored))
        missing = missing.parent_path();
    watch.push_back({missing.parent_path(), missing.filename()});
}

// --- what the files hold

/// Files are read for the user's time zone: another zone means to read them again.
void IcsFolders::followUserZone() {
    auto [zone, name] = userZone();
    if (reading.floating && name == zoneName)
        return;
    reading.floating = std::move(zone);
    zoneName = std::move(name);
    for (auto& [path, folder] : folders) {
        folder->mustStat = true;
        for (auto& [file, known] : folder->files)
            known.stamp = {};
    }
}

void IcsFolders::refreshFiles(Folder& folder) {
    if (!folder.mustStat && !folder.isUnsettled)
        return; // however many files there are
    const bool mustStat = std::exchange(folder.mustStat, false);
    folder.isUnsettled = false;
    for (auto& [name, file] : folder.files) {
        if (isAbandoned)
            return;
        if (mustStat || !file.isSettled)
            refreshFile(folder, name, file);
        folder.isUnsettled = folder.isUnsettled || !file.isSettled;
    }
}

void IcsFolders::refreshFile(Folder& folder, const std::string& name, File& file) {
    const auto path = folder.path / name;
    ++statCount;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        const int error = errno;
        isIndexStale = true;
        file = {.isSettled = true, .failure = std::strerror(error)};
        return;
    }
    if (stampOf(status) == file.stamp && file.isSettled)
        return;
    if (folder.isOfFiles)
        file.calendarName = validName(std::filesystem::path(name).stem());
    readFile(path, file);
    isIndexStale = true;
}

void IcsFolders::readFile(const Path& path, File& file) {
    ++readCount;
    const auto fail = [&](std::string reason) {
        file.failure = std::move(reason);
        file.entries.clear();
        file.calendar.reset();
        file.isSettled = true;
        file.isIndexed = true;
    };
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat before {};
    if (!fd || ::fstat(fd.get(), &before) != 0)
        return file.stamp = {}, fail(std::strerror(errno));
    file.stamp = stampOf(before);
    if (!S_ISREG(before.st_mode))
        return fail("not a file");
    if (static_cast<std::uintmax_t>(before.st_size) > maxFileSize)
        return fail("larger than 64 MB");
    const auto bytes = readAll(fd.get(), static_cast<std::size_t>(before.st_size));
    if (!bytes)
        return fail(std::strerror(errno));

    struct stat after {};
    const bool isSame = ::fstat(fd.get(), &after) == 0 && stampOf(after) == file.stamp;
    const auto now = clockNow();
    file.isSettled = isSame && !isWithin(file.stamp.modified, now, clockGrain);
    take(file, *bytes, !isSame || isWithin(file.stamp.modified, now, writingTime));
}

/// Takes over what a file says. One that ends in the middle and is young is being written: what was
/// known of it stays until then, and where nothing was, that is a failure.
void IcsFolders::take(File& file, const std::string& bytes, bool isYoung) {
    auto calendar = std::make_unique<const ICalendar>(readICalendar(bytes, reading));
    if (calendar->isCutShort && isYoung) {
        file.isSettled = false;
        isUnsettled = true;
        if (!file.calendar)
            file.failure = "it ends in the middle; it may be being written";
        return;
    }
    file.failure.reset();
    file.entries.clear(); // they point into the old calendar
    file.calendar = std::move(calendar);
    file.isIndexed = false;
}

} // namespace quorva
