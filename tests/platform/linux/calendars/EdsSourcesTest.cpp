// The provider and title of calendar accounts, however the user named them.
#include "platform/linux/calendars/EdsSources.h"

#include "platform/linux/calendars/CalendarProviders.h"

#include <gtest/gtest.h>

namespace quorva {
namespace {

using Provider = CalendarProvider;
using Type = CalendarSourceType;

TEST(EdsSources, showTheProviderThatTheConnectionOrTheNameTells) {
    const auto account = [](const char* name, const char* backend, const char* host = "") {
        return accountNamed(name, {backend, host});
    };
    using Source = CalendarSource;
    EXPECT_EQ(account("ada@firm.example", "google"),
              (Source{"Google: ada@firm.example", Type::calDAV, Provider::google}));
    EXPECT_EQ(account("Ada@GMail.com", "google"),
              (Source{"Ada@GMail.com", Type::calDAV, Provider::google}));
    EXPECT_EQ(account("Home", "caldav", "p01-caldav.iCloud.com"),
              (Source{"iCloud: Home", Type::calDAV, Provider::iCloud}));
    EXPECT_EQ(account("Home", "webdav", "dav.example"), (Source{"Home", Type::calDAV}));
    EXPECT_EQ(account("My ICLOUD", "caldav", "dav.example").provider, Provider::iCloud);
    EXPECT_EQ(account("Firm", "microsoft365"),
              (Source{"Firm", Type::exchange, Provider::exchange}));
    EXPECT_EQ(account("Google holidays", "webcal"),
              (Source{"Google holidays", Type::subscribed, Provider::google}));
}

TEST(CalendarProviders, areNamedByTitlesInAnyLetterCase) {
    EXPECT_EQ(providerNamed("ann@GMAIL.com"), Provider::google);
    EXPECT_EQ(providerNamed("Work (Office 365)"), Provider::exchange);
    EXPECT_EQ(providerNamed("outlook via google"), Provider::google);
    EXPECT_EQ(providerNamed("Holidays"), Provider::other);
}

} // namespace
} // namespace quorva
