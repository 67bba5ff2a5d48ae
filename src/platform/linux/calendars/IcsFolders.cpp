#include "platform/linux/calendars/IcsFolders.h"

#include <utility>

namespace quorva {

IcsFolders::IcsFolders(IcsPlaces places) : tree(std::move(places), isAbandoned) {}

IcsFolders::Findings IcsFolders::look(Time start, Time end, const Hints& hints) {
    tree.walk(hints);
    tree.readFiles();
    index.update(tree, start, end);
    Findings findings{.sources = tree.sources(),
                      .watch = tree.watch(),
                      .isUnsettled = tree.hasHalfWrittenFiles()};
    index.collect(start, end, findings.window);
    countCalendars(findings.window);
    return findings;
}

IcsFolders::Findings IcsFolders::list() {
    tree.walk({});
    return {.sources = tree.sources(), .watch = tree.watch()};
}

/// A folder that could not be listed counts as one calendar that failed.
void IcsFolders::countCalendars(CalendarWindow& window) const {
    for (const auto& [path, folder] : tree.folders()) {
        const auto failure = folder.failure();
        if (failure)
            window.failed.push_back({folder.name, *failure, folder.calendar().identifier});
        if (folder.isOfFiles && !failure)
            window.calendars += folder.files.size();
        else if (failure || folder.isCalendar())
            ++window.calendars;
    }
}

} // namespace quorva
