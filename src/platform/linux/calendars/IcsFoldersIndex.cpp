// What lies in the days ahead, and what of the files is missing there.
#include "platform/linux/calendars/IcsFolderRecords.h"
#include "platform/linux/calendars/IcsFolders.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

std::string lossesOf(const ICalendarProblems& problems) {
    std::string reason;
    for (const auto& problem : problems.all())
        if (problem.isLoss)
            reason +=
                fmt::format("{}{} ({})", reason.empty() ? "" : "; ", problem.reason, problem.count);
    return reason;
}

} // namespace

/// Brings the index up to date, and to the period where it covers another: then for twice its
/// length, so that this is not needed again at once.
void IcsFolders::cover(Time start, Time end) {
    if (start < covered.start || end > covered.end) {
        covered = {.start = start, .end = end + (end - start)};
        for (auto& [path, folder] : folders)
            for (auto& [name, file] : folder->files)
                file.isIndexed = false;
        isIndexStale = true;
    }
    if (std::exchange(isIndexStale, false))
        rebuildIndex();
}

void IcsFolders::rebuildIndex() {
    index.clear();
    for (auto& [path, folder] : folders)
        for (auto& [name, file] : folder->files) {
            if (!file.isIndexed && !isAbandoned)
                indexFile(*folder, file);
            index.insert(index.end(), file.entries.begin(), file.entries.end());
        }
    std::sort(index.begin(), index.end(),
              [](const Entry& a, const Entry& b) { return a.start < b.start; });
    findUnreadFiles();
}

void IcsFolders::indexFile(const Folder& folder, File& file) {
    file.entries.clear();
    file.problems = {};
    file.isIndexed = true;
    if (!file.calendar)
        return;
    const auto& name = folder.isOfFiles ? file.calendarName : folder.name;
    Occurrences found;
    found.budget.steps = std::min(found.budget.steps, budget.steps);
    const auto allowed = found.budget.steps;
    for (const auto& series : file.calendar->series) {
        const auto span = spanOf(series);
        if (span.start >= covered.end || span.end < covered.start)
            continue;
        found.events.clear();
        found.attendees = 0;
        addOccurrences(series, covered.start, covered.end, name, found);
        if (found.events.empty())
            continue;
        Entry entry{Time::max(), Time::min(), &series, &name};
        for (const auto& event : found.events) {
            entry.start = std::min(entry.start, event.start);
            entry.end = std::max(entry.end, event.end);
        }
        file.entries.push_back(entry);
    }
    budget.steps -= allowed - found.budget.steps;
    file.problems = found.problems;
}

void IcsFolders::collect(Time start, Time end, CalendarWindow& window) {
    Occurrences found;
    for (const auto& entry : index) {
        if (entry.start >= end)
            break;
        if (entry.end >= start)
            addOccurrences(*entry.series, start, end, *entry.calendarName, found);
    }
    window.events = std::move(found.events);
    std::stable_sort(window.events.begin(), window.events.end(),
                     [](const auto& a, const auto& b) { return a.start < b.start; });
    for (const auto& problem : found.problems.all())
        window.unread.push_back({.calendarName = "folders", .reason = problem.reason});
}

/// The calendars that could not be listed, and those of which files could not be read.
void IcsFolders::report(CalendarWindow& window) const {
    window.unread.insert(window.unread.end(), unreadFiles.begin(), unreadFiles.end());
    for (const auto& [path, folder] : folders) {
        const bool isUnread = folder->failure && folder->isRequired;
        if (isUnread)
            window.unread.push_back({folder->name, *folder->failure});
        window.calendars += isUnread               ? 1
                            : folder->isOfFiles    ? folder->files.size()
                            : folder->isCalendar() ? 1
                                                   : 0;
    }
}

/// One line for each calendar in whose files something was lost.
void IcsFolders::findUnreadFiles() {
    unreadFiles.clear();
    for (const auto& [path, folder] : folders) {
        std::map<std::string, ICalendarProblems> problemsOf;
        for (const auto& [name, file] : folder->files) {
            auto& problems = problemsOf[folder->isOfFiles ? file.calendarName : folder->name];
            if (file.failure)
                problems.addLoss("file: " + *file.failure);
            else if (file.calendar)
                problems.add(file.calendar->problems);
            problems.add(file.problems);
        }
        for (const auto& [name, problems] : problemsOf)
            if (const auto reason = lossesOf(problems); !reason.empty())
                unreadFiles.push_back({name, reason});
    }
}

std::vector<CalendarSource> IcsFolders::sources() const {
    std::vector<CalendarSource> all;
    for (const auto& [path, folder] : folders) {
        if (folder->isCalendar() && (!folder->failure || folder->isRequired))
            all.push_back({.title = folder->name});
        if (folder->isOfFiles)
            for (const auto& [name, file] : folder->files)
                all.push_back({.title = validName(std::filesystem::path(name).stem())});
    }
    return all;
}

} // namespace quorva
