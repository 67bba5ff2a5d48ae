// Folders of .ics files on a real disk: which are found, which are read again, which are reported.
#include "platform/linux/calendars/IcsFolderStore.h"

#include "platform/linux/glib/GLibMainLoop.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quorva {
namespace {

using std::chrono::hours;

class IcsFolderStoreTest : public testing::Test {
protected:
    static constexpr int dayStart = 1'774'656'000; // 2026-03-28
    const Time start{std::chrono::seconds(dayStart)};
    TemporaryFolder home;
    GLibMainLoop loop;
    std::unique_ptr<IcsFolderStore> store;

    static std::string event(const std::string& uid, const std::string& day = "20260328") {
        return "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTART:" + day +
               "T120000Z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    }

    /// Writes a file with a modification time of an hour ago.
    void writeOld(const std::string& name, const std::string& bytes) const {
        home.write(name, bytes);
        std::filesystem::last_write_time(home.path / name,
                                         std::filesystem::file_time_type::clock::now() - hours(1));
    }

    void open(std::vector<std::filesystem::path> folders = {}) {
        store = std::make_unique<IcsFolderStore>(
            loop, IcsPlaces{home.path / "calendars", std::move(folders)});
    }

    /// Runs the loop until `isDone`; false when that takes more than 20 seconds.
    bool wait(const std::function<bool()>& isDone) {
        bool isLate = false;
        const auto limit = loop.after(Seconds(20), [&] { isLate = true; });
        while (!isDone() && !isLate)
            g_main_context_iteration(nullptr, TRUE);
        return !isLate;
    }

    CalendarWindow fetch() {
        std::optional<CalendarWindow> window;
        const auto waiting = store->fetchEvents(
            start, start + hours(24), [&](CalendarWindow read) { window = std::move(read); });
        EXPECT_TRUE(wait([&] { return window.has_value(); }));
        return window.value_or(CalendarWindow{});
    }

    static std::vector<std::string> names(const CalendarWindow& window) {
        std::vector<std::string> all;
        for (const auto& found : window.events)
            all.push_back(found.calendarName + "/" + found.eventIdentifier.value_or("?"));
        return all;
    }

    /// Runs the loop until the store tells of a change that makes the events `expected`.
    bool changesTo(const std::vector<std::string>& expected) {
        int changes = 1;
        const auto subscription = store->onChange([&] { ++changes; });
        while (wait([&] { return changes > 0; })) {
            changes = 0;
            auto found = names(fetch());
            std::sort(found.begin(), found.end());
            if (found == expected)
                return true;
        }
        return false;
    }
};

using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST_F(IcsFolderStoreTest, findsTheCalendarsOfFoldersAndSingleFiles) {
    writeOld("calendars/account/work/a.ics", event("a"));
    writeOld("calendars/account/work/b.ics", event("b", "20270101"));
    writeOld("calendars/account/work/.c.ics", event("c"));
    writeOld("calendars/account/work/d.ics.tmp", event("d"));
    writeOld("calendars/home/e.ics", event("e"));
    home.write("calendars/home/displayname", "Family\n");
    writeOld("calendars/club.ics", event("f"));
    writeOld("elsewhere/export.ics", event("g") + event("h"));
    open({home.path / "elsewhere/export.ics"});
    const auto window = fetch();
    EXPECT_THAT(names(window),
                UnorderedElementsAre("work/a", "Family/e", "club/f", "export/g", "export/h"));
    EXPECT_EQ(window.calendars, 4U);
    EXPECT_THAT(window.failed, IsEmpty());
    std::vector<std::string> titles;
    for (const auto& source : store->sources())
        titles.push_back(source.title);
    EXPECT_THAT(titles, UnorderedElementsAre("work", "Family", "club", "export"));
}

TEST_F(IcsFolderStoreTest, readsNothingAgainThatHasNotChanged) {
    for (int i = 0; i < 10'000; ++i)
        writeOld("calendars/work/" + std::to_string(i) + ".ics",
                 event(std::to_string(i), i < 20 ? "20260328" : "20270101"));
    open();
    EXPECT_EQ(fetch().events.size(), 20U);
    (void)fetch(); // the folder is watched from now on
    EXPECT_EQ(store->reads(), 10'000U);
    EXPECT_EQ(fetch().events.size(), 20U);
    EXPECT_EQ(store->reads(), 10'000U);

    writeOld("calendars/work/7.ics", event("7", "20270101"));
    std::filesystem::remove(home.path / "calendars/work/8.ics");
    int changes = 0;
    const auto subscription = store->onChange([&] { ++changes; });
    ASSERT_TRUE(wait([&] { return changes > 0; }));
    EXPECT_EQ(fetch().events.size(), 18U);
    EXPECT_EQ(store->reads(), 10'001U);
}

TEST_F(IcsFolderStoreTest, followsFilesAndFoldersThatComeChangeAndGo) {
    open();
    EXPECT_THAT(names(fetch()), IsEmpty());
    writeOld("calendars/work/a.ics", event("a"));
    EXPECT_TRUE(changesTo({"work/a"}));
    std::ofstream(home.path / "calendars/work/a.ics") << event("b"); // in place, of the same size
    EXPECT_TRUE(changesTo({"work/b"}));
    writeOld("calendars/home/c.ics", event("c"));
    EXPECT_TRUE(changesTo({"home/c", "work/b"}));
    std::filesystem::rename(home.path / "calendars/work", home.path / "calendars/office");
    EXPECT_TRUE(changesTo({"home/c", "office/b"}));
    std::filesystem::remove_all(home.path / "calendars");
    EXPECT_TRUE(changesTo({}));
}

TEST_F(IcsFolderStoreTest, keepsWhatItKnewWhileAFileIsBeingWritten) {
    writeOld("calendars/work/a.ics", event("a"));
    open();
    EXPECT_THAT(names(fetch()), UnorderedElementsAre("work/a"));
    home.write("calendars/work/a.ics", event("b").substr(0, 60));
    auto window = fetch();
    EXPECT_THAT(names(window), UnorderedElementsAre("work/a"));
    EXPECT_THAT(window.failed, IsEmpty());
    home.write("calendars/work/a.ics", event("b"));
    EXPECT_TRUE(changesTo({"work/b"}));

    writeOld("calendars/work/a.ics", event("b").substr(0, 60)); // no longer being written
    ASSERT_TRUE(wait([&] { return !fetch().failed.empty(); }));
    EXPECT_EQ(fetch().failed.front().calendarName, "work");
}

TEST_F(IcsFolderStoreTest, reportsWhatCannotBeRead) {
    writeOld("calendars/work/a.ics", event("a"));
    writeOld("calendars/broken/b.ics", "<html>");
    std::filesystem::create_symlink("nowhere", home.path / "calendars/broken/c.ics");
    writeOld("calendars/large/d.ics", "");
    std::filesystem::resize_file(home.path / "calendars/large/d.ics", IcsFile::maxSize + 1);
    std::filesystem::create_directories(home.path / "calendars/odd");
    ASSERT_EQ(::mkfifo((home.path / "calendars/odd/pipe.ics").c_str(), 0600), 0);
    open({home.path / "missing"});
    const auto window = fetch();
    EXPECT_THAT(names(window), UnorderedElementsAre("work/a"));
    std::vector<std::string> failed;
    for (const auto& calendar : window.failed)
        failed.push_back(calendar.calendarName + ": " + calendar.reason);
    EXPECT_THAT(failed, UnorderedElementsAre("broken: not an iCalendar file (1); "
                                             "file: No such file or directory (1)",
                                             "large: file: larger than 64 MB (1)",
                                             "odd: file: not a file (1)",
                                             "missing: No such file or directory"));
    EXPECT_EQ(window.calendars, 5U);
}

TEST_F(IcsFolderStoreTest, tellsCalendarsOfOneNameApart) {
    for (const auto* const place : {"calendars/one/work", "calendars/two/work"})
        writeOld(std::string(place) + "/a.ics", event(place));
    open();
    const auto events = fetch().events;
    ASSERT_EQ(events.size(), 2U);
    writeOld("calendars/two/work/a.ics", "<html>");
    ASSERT_TRUE(wait([&] { return !fetch().failed.empty(); }));
    const auto failed = fetch().failed;
    ASSERT_EQ(failed.size(), 1U);
    for (const auto& found : events)
        EXPECT_EQ(failed[0].covers(found.calendarIdentifier),
                  found.eventIdentifier == "calendars/two/work");
}

TEST_F(IcsFolderStoreTest, doesNotAnswerOnceItHasGone) {
    for (int i = 0; i < 200; ++i)
        writeOld("calendars/work/" + std::to_string(i) + ".ics", event(std::to_string(i)));
    open();
    int calls = 0;
    const auto pending = store->fetchEvents(start, start + hours(24), [&](auto&&) { ++calls; });
    store.reset(); // while its thread is busy
    bool hasPassed = false;
    loop.post([&] { hasPassed = true; });
    EXPECT_TRUE(wait([&] { return hasPassed; }));
    EXPECT_EQ(calls, 0);
}

TEST_F(IcsFolderStoreTest, asksForConsentWhereItIsTold) {
    store = std::make_unique<IcsFolderStore>(
        loop, IcsPlaces{},
        CalendarConsent{.status = [] { return CalendarAuthorization::denied; },
                        .request = [](const auto& done) { done({.error = "no window"}); }});
    EXPECT_EQ(store->authorizationStatus(), CalendarAuthorization::denied);
    std::optional<std::string> error;
    store->requestFullAccess(
        [&](const CalendarStore::AccessAnswer& answer) { error = answer.error; });
    EXPECT_EQ(error, "no window");
}

} // namespace
} // namespace quorva
