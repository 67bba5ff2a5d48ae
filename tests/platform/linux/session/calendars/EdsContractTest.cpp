// The promises of a CalendarStore, kept by the desktop's calendar service.
#include "platform/linux/calendars/EdsCalendarStore.h"
#include "platform/linux/session/calendars/CalendarServiceTest.h"
#include "support/CalendarStoreContract.h"

namespace quorva {
namespace {

class CalendarService : public CalendarServiceTest {
protected:
    /// The accounts, once found, are told as a change of their own.
    void SetUp() override {
        following = store.onChange([this] { ++changes; });
        ASSERT_TRUE(comesTo([this] { return changes > 0; }));
    }
    static void put(const ContractEvent& event) { EXPECT_TRUE(CalendarWriter().put(event.text())); }
    void addFailingCalendar() {
        changes = 0;
        ASSERT_TRUE(addCalendar("Broken", "no-such-backend"));
        ASSERT_TRUE(comesTo([this] { return changes > 0; }));
    }

    EdsCalendarStore store{loop, log};
    int changes = 0;
    Subscription following;
};

using Stores = testing::Types<CalendarService>;
INSTANTIATE_TYPED_TEST_SUITE_P(CalendarStore, CalendarStoreContract, Stores);

} // namespace
} // namespace quorva
