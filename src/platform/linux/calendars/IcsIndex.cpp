#include "platform/linux/calendars/IcsIndex.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

constexpr std::int64_t stepsOfUpdate = 50'000'000; // seconds of computing, whatever the files say

std::string lossesOf(const ICalendarProblems& problems) {
    std::string reason;
    for (const auto& problem : problems.all())
        if (problem.isLoss)
            reason +=
                fmt::format("{}{} ({})", reason.empty() ? "" : "; ", problem.reason, problem.count);
    return reason;
}

} // namespace

IcsIndex::IcsIndex(const std::atomic<bool>& isAbandoned_) : isAbandoned(isAbandoned_) {}

/// A period that is not covered is covered with as much time again behind it, so that the next
/// looks, a little later each, need no new index.
void IcsIndex::update(const IcsFolderTree& tree, Time start, Time end) {
    const bool isCovered = start >= covered.start && end <= covered.end;
    if (isCovered && revision == tree.revision())
        return;
    if (!isCovered) {
        covered = {.start = start, .end = end + (end - start)};
        contents.clear();
    }
    revision = tree.revision();
    rebuild(tree.folders());
    findFailures(tree.folders());
}

/// Files that have not been parsed again keep their entries.
void IcsIndex::rebuild(const IcsFolderTree::Folders& folders) {
    ExpansionBudget budget{.steps = stepsOfUpdate};
    Contents present;
    entries.clear();
    for (const auto& [path, folder] : folders)
        for (const auto& [name, file] : folder.files) {
            if (!file.calendar() || isAbandoned)
                continue;
            const bool isKnown = contents.contains(file.calendar());
            if (isKnown)
                present.insert(contents.extract(file.calendar()));
            auto& content = present[file.calendar()];
            content.calendarName = folder.calendarNameOf(name);
            if (!isKnown)
                fill(content, *file.calendar(), budget);
            entries.insert(entries.end(), content.entries.begin(), content.entries.end());
        }
    contents = std::move(present);
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.start < b.start; });
}

/// Adds the series of a file to its empty content.
void IcsIndex::fill(Content& content, const ICalendar& calendar, ExpansionBudget& budget) const {
    Occurrences occurrences;
    occurrences.budget.steps = std::min(occurrences.budget.steps, budget.steps);
    const auto allowed = occurrences.budget.steps;
    for (const auto& series : calendar.series) {
        const auto span = spanOf(series);
        if (span.start >= covered.end || span.end < covered.start)
            continue;
        occurrences.events.clear();
        occurrences.attendees = 0;
        addOccurrences(series, covered.start, covered.end, content.calendarName, occurrences);
        if (occurrences.events.empty())
            continue;
        Entry entry{Time::max(), Time::min(), &series, &content.calendarName};
        for (const auto& event : occurrences.events) {
            entry.start = std::min(entry.start, event.start);
            entry.end = std::max(entry.end, event.end);
        }
        content.entries.push_back(entry);
    }
    budget.steps -= allowed - occurrences.budget.steps;
    content.problems = std::move(occurrences.problems);
}

void IcsIndex::collect(Time start, Time end, CalendarWindow& window) const {
    Occurrences found;
    for (const auto& entry : entries) {
        if (entry.start >= end)
            break;
        if (entry.end >= start)
            addOccurrences(*entry.series, start, end, *entry.calendarName, found);
    }
    window.events = std::move(found.events);
    std::stable_sort(window.events.begin(), window.events.end(),
                     [](const auto& a, const auto& b) { return a.start < b.start; });
    for (const auto& problem : found.problems.all())
        window.failed.push_back({.calendarName = "folders", .reason = problem.reason});
    window.failed.insert(window.failed.end(), failures.begin(), failures.end());
}

/// One line for each calendar in whose files something was lost.
void IcsIndex::findFailures(const IcsFolderTree::Folders& folders) {
    failures.clear();
    for (const auto& [path, folder] : folders) {
        std::map<std::string, ICalendarProblems> problemsOf;
        for (const auto& [name, file] : folder.files) {
            auto& problems = problemsOf[folder.calendarNameOf(name)];
            if (file.failure())
                problems.addLoss("file: " + *file.failure());
            else if (file.calendar())
                problems.add(file.calendar()->problems);
            if (const auto content = contents.find(file.calendar()); content != contents.end())
                problems.add(content->second.problems);
        }
        for (const auto& [name, problems] : problemsOf)
            if (const auto reason = lossesOf(problems); !reason.empty())
                failures.push_back({name, reason});
    }
}

} // namespace quorva
