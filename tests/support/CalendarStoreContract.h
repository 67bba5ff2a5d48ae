// What every CalendarStore promises, wherever its calendars are: run for the double and for the
// real stores alike.
#pragma once

#include "platform/CalendarStore.h"

#include <fmt/chrono.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorva {

struct ContractEvent {
    std::string id;
    Time start;
    Time end;
    bool isCancelled = false;

    /// As a VEVENT.
    [[nodiscard]] std::string text() const {
        const auto utc = [](Time time) {
            return fmt::format("{:%Y%m%dT%H%M%SZ}", std::chrono::floor<std::chrono::seconds>(time));
        };
        return fmt::format("BEGIN:VEVENT\r\nUID:{}\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:{}\r\n"
                           "DTEND:{}\r\n{}END:VEVENT\r\n",
                           id, utc(start), utc(end), isCancelled ? "STATUS:CANCELLED\r\n" : "");
    }
};

/// `Computer` is a fixture with the members
///   store                     what is tested: a CalendarStore, or the reading part of one
///   put(ContractEvent)        adds an event to a calendar that can be read
///   addFailingCalendar()      adds a calendar called "Broken" that cannot be read
///   comesTo(condition)        turns the main loop until the condition holds; false if it never
///   does
template <typename Computer>
class CalendarStoreContract : public Computer {
protected:
    CalendarWindow fetch() {
        std::optional<CalendarWindow> answer;
        const auto subscription = this->store.fetchEvents(
            from, to, [&](CalendarWindow window) { answer = std::move(window); });
        EXPECT_TRUE(this->comesTo([&] { return answer.has_value(); }));
        return answer.value_or(CalendarWindow{});
    }
    static std::vector<std::string> idsOf(const CalendarWindow& window) {
        std::vector<std::string> ids;
        for (const auto& event : window.events)
            ids.push_back(event.eventIdentifier.value_or("none"));
        return ids;
    }

    const Time from = std::chrono::sys_days(std::chrono::year(2030) / 3 / 4);
    const Time to = from + std::chrono::hours(24);
};

TYPED_TEST_SUITE_P(CalendarStoreContract);

TYPED_TEST_P(CalendarStoreContract, answersEachFetchOnceAndNoneThatWasDropped) {
    int answered = 0;
    int dropped = 0;
    const auto ask = [&](int& calls) {
        return this->store.fetchEvents(this->from, this->to, [&](auto&&) { ++calls; });
    };
    const auto first = ask(answered);
    auto second = ask(dropped);
    const auto third = ask(answered);
    second.reset();
    EXPECT_TRUE(this->comesTo([&] { return answered == 2; }));
    (void)this->fetch();
    EXPECT_EQ(answered, 2);
    EXPECT_EQ(dropped, 0);
}

TYPED_TEST_P(CalendarStoreContract, deliversWhatOverlapsThePeriodAndIsNotCancelled) {
    using namespace std::chrono_literals;
    const auto start = this->from;
    const auto end = this->to;
    this->put({"last", end - 1s, end + 1h});
    this->put({"instant", start, start});
    this->put({"next", end, end + 1h});
    this->put({"running", start - 1h, start + 1s});
    this->put({"over", start - 1h, start});
    this->put({"around", start - 2h, end + 1h});
    this->put({"cancelled", start + 1h, start + 2h, true});
    EXPECT_THAT(this->idsOf(this->fetch()),
                testing::ElementsAre("around", "running", "instant", "last"));
}

TYPED_TEST_P(CalendarStoreContract, namesACalendarThatFailsAndDeliversTheOthers) {
    this->put({"meeting", this->from, this->to});
    this->addFailingCalendar();
    const auto window = this->fetch();
    EXPECT_THAT(this->idsOf(window), testing::ElementsAre("meeting"));
    ASSERT_EQ(window.failed.size(), 1U);
    EXPECT_EQ(window.failed.front().calendarName, "Broken");
    EXPECT_NE(window.failed.front().reason, "");
    EXPECT_GE(window.calendars, 2U);
}

TYPED_TEST_P(CalendarStoreContract, tellsOfAChangeToThoseWhoStillListen) {
    (void)this->fetch();
    int told = 0;
    int toldFormer = 0;
    const auto listening = this->store.onChange([&] { ++told; });
    auto former = this->store.onChange([&] { ++toldFormer; });
    former.reset();
    this->put({"new", this->from, this->to});
    EXPECT_TRUE(this->comesTo([&] { return told > 0; }));
    EXPECT_THAT(this->idsOf(this->fetch()), testing::ElementsAre("new"));
    EXPECT_EQ(toldFormer, 0);
}

REGISTER_TYPED_TEST_SUITE_P(CalendarStoreContract, answersEachFetchOnceAndNoneThatWasDropped,
                            deliversWhatOverlapsThePeriodAndIsNotCancelled,
                            namesACalendarThatFailsAndDeliversTheOthers,
                            tellsOfAChangeToThoseWhoStillListen);

} // namespace quorva
