// The promises of a CalendarStore, kept by the double and by folders of files.
#include "support/CalendarStoreContract.h"

#include "platform/linux/calendars/IcsFolderStore.h"
#include "support/FakeCalendarStore.h"
#include "support/TemporaryFolder.h"
#include "support/TurningMainLoop.h"

namespace quorva {
namespace {

class CalendarsInMemory : public testing::Test {
protected:
    CalendarsInMemory() { store.answersAtOnce = false; }

    void put(const ContractEvent& event) {
        if (!event.isCancelled) // the double has no place for what is never given out
            store.events.push_back({.eventIdentifier = event.id,
                                    .start = event.start,
                                    .end = event.end,
                                    .calendarName = "Personal"});
        store.changes.call();
    }
    void addFailingCalendar() { store.failed.push_back({"Broken", "no answer"}); }
    template <typename Condition>
    bool comesTo(Condition condition) {
        store.answerFetch();
        return condition();
    }

    FakeCalendarStore store;
};

class CalendarsInFolders : public testing::Test {
protected:
    void put(const ContractEvent& event) {
        folder.write("calendars/Personal/" + event.id + ".ics",
                     "BEGIN:VCALENDAR\r\n" + event.text() + "END:VCALENDAR\r\n");
    }
    void addFailingCalendar() { folder.write("calendars/Broken/a.ics", "<html>"); }
    template <typename Condition>
    bool comesTo(Condition condition) {
        return turning.comesTo(condition);
    }

    const TemporaryFolder folder;
    TurningMainLoop turning;
    IcsFolderStore store{turning.loop, {.root = folder.path / "calendars"}};
};

using Stores = testing::Types<CalendarsInMemory, CalendarsInFolders>;
INSTANTIATE_TYPED_TEST_SUITE_P(CalendarStore, CalendarStoreContract, Stores);

} // namespace
} // namespace quorva
