#include "platform/linux/calendars/IcsIndex.h"

#include <algorithm>

namespace quorva {
namespace {

constexpr std::int64_t stepsOfUpdate = 50'000'000; // seconds of computing, whatever the files say

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
    Contents present;
    std::vector<std::pair<const ICalendar*, Content*>> unknown;
    for (const auto& [path, folder] : folders)
        for (const auto& [name, file] : folder.files) {
            if (!file.calendar() || isAbandoned)
                continue;
            const bool isKnown = contents.contains(file.calendar());
            if (isKnown)
                present.insert(contents.extract(file.calendar()));
            auto& content = present[file.calendar()];
            content.calendar = folder.calendarOf(name);
            if (!isKnown)
                unknown.emplace_back(file.calendar().get(), &content);
        }
    fill(unknown);
    contents = std::move(present);
    entries.clear();
    for (const auto& [calendar, content] : contents)
        entries.insert(entries.end(), content.entries.begin(), content.entries.end());
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.start < b.start; });
}

/// Adds the series of files to their empty contents.
void IcsIndex::fill(const std::vector<std::pair<const ICalendar*, Content*>>& unknown) const {
    struct Job {
        Content* content;
        Entry entry;
        ICalendarProblems problems;
    };
    std::vector<Job> jobs;
    for (const auto& [calendar, content] : unknown)
        for (const auto& series : calendar->series) {
            const auto span = spanOf(series);
            if (span.start < covered.end && span.end >= covered.start)
                jobs.push_back(
                    {content, {Time::max(), Time::min(), &series, &content->calendar}, {}});
        }
    shareSteps(jobs.size(), stepsOfUpdate, [&](std::size_t index, ExpansionBudget& budget) {
        if (isAbandoned)
            return true;
        auto& job = jobs[index];
        auto room = ICalendarLimits::attendeesOfPeriod; // only the times are kept
        auto found = occurrencesOf(*job.entry.series, covered.start, covered.end, budget, room);
        for (const auto& event : found.events) {
            job.entry.start = std::min(job.entry.start, event.start);
            job.entry.end = std::max(job.entry.end, event.end);
        }
        if (!found.events.empty() && !found.problems.all().empty())
            job.entry.end = std::max(job.entry.end, covered.end); // there may be more of it
        job.problems = std::move(found.problems);
        return found.isComplete;
    });
    for (const auto& job : jobs) {
        if (job.entry.start <= job.entry.end)
            job.content->entries.push_back(job.entry);
        job.content->problems.add(job.problems);
    }
}

void IcsIndex::collect(Time start, Time end, CalendarWindow& window) const {
    std::vector<const Entry*> near;
    std::vector<const ICalendarSeries*> series;
    for (const auto& entry : entries) {
        if (entry.start >= end)
            break;
        if (entry.end < start)
            continue;
        near.push_back(&entry);
        series.push_back(entry.series);
    }
    window.failed = failures;
    auto found = occurrencesOfEach(series, start, end);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto& calendar = *near[i]->calendar;
        for (auto& event : found[i].events) {
            event.calendarName = calendar.name;
            event.calendarIdentifier = calendar.identifier;
            window.events.push_back(std::move(event));
        }
        const auto reason = lossesOf(found[i].problems);
        const bool isNamed =
            std::any_of(window.failed.begin(), window.failed.end(),
                        [&](const auto& each) { return each.identifier == calendar.identifier; });
        if (!reason.empty() && !isNamed)
            window.failed.push_back({calendar.name, reason, calendar.identifier});
    }
    std::stable_sort(window.events.begin(), window.events.end(),
                     [](const auto& a, const auto& b) { return a.start < b.start; });
}

/// One line for each calendar in whose files something was lost.
void IcsIndex::findFailures(const IcsFolderTree::Folders& folders) {
    failures.clear();
    for (const auto& [path, folder] : folders) {
        struct Calendar {
            std::string name;
            ICalendarProblems problems;
        };
        std::map<std::string, Calendar> calendars; // by identifier
        for (const auto& [name, file] : folder.files) {
            auto calendar = folder.calendarOf(name);
            auto& known = calendars[calendar.identifier];
            known.name = std::move(calendar.name);
            auto& problems = known.problems;
            if (file.failure())
                problems.addLoss("file: " + *file.failure());
            else if (file.calendar())
                problems.add(file.calendar()->problems);
            if (const auto content = contents.find(file.calendar()); content != contents.end())
                problems.add(content->second.problems);
        }
        for (const auto& [identifier, calendar] : calendars)
            if (const auto reason = lossesOf(calendar.problems); !reason.empty())
                failures.push_back({calendar.name, reason, identifier});
    }
}

} // namespace quorva
