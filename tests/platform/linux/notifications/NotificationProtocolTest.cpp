// The calls to notification servers, without a server: texts, parameters, keys and the queue.
#include "platform/linux/notifications/NotificationProtocol.h"

#include "platform/linux/notifications/NotificationQueue.h"
#include "platform/linux/notifications/PostedNotifications.h"

#include <gmock/gmock.h>

namespace quorva::notifications {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::Eq;
using testing::Optional;

std::string printed(GVariant* value) {
    const GVariantPtr owned(g_variant_ref_sink(value));
    return GCharsPtr(g_variant_print(owned.get(), FALSE)).get();
}

} // namespace

TEST(NotificationTextTest, holdsOnlyWhatIsSafeToShow) {
    struct Row {
        std::string text;
        std::string kept;
        std::string joined;
    };
    const Row rows[] = {
        {"a\r\nb\rc\nd\u2028e", "a\nb\nc\nd\ne", "a b c d e"},
        {"a\tb\x1b[31mc\x7f\u0085"s + "d", "a b[31mcd", "a b[31mcd"},
        {"nul\0in"s, "nul\uFFFDin", "nul\uFFFDin"},
        {"\xff\xfe bad \xc3", "\uFFFD\uFFFD bad \uFFFD", "\uFFFD\uFFFD bad \uFFFD"},
        {"\u202Egnp.exe\u2066\uFFFE\uFFFF", "gnp.exe", "gnp.exe"},
        {"Zoë 👩‍👩‍👧 שלום", "Zoë 👩‍👩‍👧 שלום",
         "Zoë 👩‍👩‍👧 שלום"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(plainText(row.text, 100, Lines::keep), row.kept);
        EXPECT_EQ(plainText(row.text, 100, Lines::join), row.joined);
    }
}

TEST(NotificationTextTest, isCutBetweenCharacters) {
    EXPECT_EQ(plainText("abcd", 4, Lines::keep), "abcd");
    EXPECT_EQ(plainText("abcde", 4, Lines::keep), "abc…");
    EXPECT_EQ(plainText("abe\u0301x", 4, Lines::keep), "ab…") << "not between e and its accent";
    EXPECT_EQ(plainText("a👩‍👩‍👧b", 5, Lines::keep), "a…") << "not within a family";
    EXPECT_EQ(plainText("äöüßé", 4, Lines::keep), "äöü…");
    const auto zalgo = plainText("a" + std::string(20'000, '\xcc'), 50, Lines::keep);
    EXPECT_LE(g_utf8_strlen(zalgo.c_str(), -1), 50);
    std::string marks = "a";
    for (int count = 0; count < 9000; ++count)
        marks += "\u0301";
    EXPECT_LE(g_utf8_strlen(plainText(marks, maxBody, Lines::keep).c_str(), -1), 4000);
}

TEST(NotificationProtocolTest, encodesARequest) {
    const NotificationRequest request{.identifier = "x",
                                      .title = "Otter <b>\njoined",
                                      .body = "\"Ann\" & Bo <script>\nmeet",
                                      .hasSound = true,
                                      .urgency = NotificationUrgency::critical,
                                      .categoryIdentifier = "BOT"};
    const std::vector<Button> buttons{{"OBJECT#1", "Object\n…"}, {"DISMISS#1", "Dismiss"}};
    EXPECT_EQ(printed(encode(request, buttons, 7, {.actions = true, .bodyMarkup = true})),
              "('Quorva', 7, 'com.veltran.QuorvaApp', 'Otter <b> joined', "
              "'\"Ann\" &amp; Bo &lt;script&gt;\\nmeet', "
              "['OBJECT#1', 'Object …', 'DISMISS#1', 'Dismiss'], "
              "{'urgency': <byte 0x02>, 'desktop-entry': <'com.veltran.QuorvaApp'>, "
              "'sound-name': <'message-new-instant'>, 'category': <'x-quorva.BOT'>}, -1)");
    EXPECT_EQ(
        printed(encode({.body = "a & b", .urgency = NotificationUrgency::low}, buttons, 0, {})),
        "('Quorva', 0, 'com.veltran.QuorvaApp', '', 'a & b', [], "
        "{'urgency': <byte 0x00>, 'desktop-entry': <'com.veltran.QuorvaApp'>, "
        "'suppress-sound': <true>}, -1)");
}

TEST(NotificationProtocolTest, toleratesMalformedReplies) {
    const auto decoded = [](const char* text) {
        const GVariantPtr reply(g_variant_parse(nullptr, text, nullptr, nullptr, nullptr));
        return std::pair(decodeCapabilities(reply.get()), decodeNumber(reply.get()));
    };
    EXPECT_EQ(decoded("(['body', 'actions', 'body-markup'],)").first, (Capabilities{true, true}));
    EXPECT_EQ(decoded("(['body', 'action-icons'],)").first, Capabilities{});
    EXPECT_EQ(decoded("(['body-hyperlinks'],)").first, (Capabilities{false, true}));
    EXPECT_EQ(decoded("('actions',)").first, Capabilities{});
    EXPECT_EQ(decodeCapabilities(nullptr), Capabilities{});
    EXPECT_THAT(decoded("(uint32 9,)").second, Optional(9U));
    EXPECT_EQ(decoded("(uint32 0,)").second, std::nullopt);
    EXPECT_EQ(decoded("(int32 9,)").second, std::nullopt);
}

TEST(PostedNotificationsTest, leadsKeysBackToTheRequestsOfThisRunOnly) {
    PostedNotifications posted(0xABC);
    const auto key = posted.key("OBJECT", "bot#1-2");
    EXPECT_EQ(posted.key("OBJECT", "bot#1-2"), key) << "the same for a later request";
    const auto other = posted.key("A#0000000000000abc-1", "other");
    using Press = PostedNotifications::Press;
    EXPECT_THAT(posted.pressOf(key), Optional(Eq(Press{"OBJECT", "bot#1-2"})));
    EXPECT_THAT(posted.pressOf(other), Optional(Eq(Press{"A#0000000000000abc-1", "other"})));
    EXPECT_EQ(PostedNotifications(0xABD).pressOf(key), std::nullopt);
    for (const auto* const bad :
         {"", "OBJECT", "default", "OBJECT#0000000000000abc-", "OBJECT#0000000000000abc-3",
          "OBJECT#0000000000000abc-1x", "OBJECT#0000000000000abc--1",
          "OBJECT#0000000000000abc-99999999999999999999"})
        EXPECT_EQ(posted.pressOf(bad), std::nullopt) << bad;

    for (std::size_t count = 1; count < PostedNotifications::capacity; ++count)
        posted.noteShown("filler " + std::to_string(count), 5);
    EXPECT_EQ(posted.pressOf(key), std::nullopt) << "the oldest is dropped";
    EXPECT_TRUE(posted.pressOf(other));
    EXPECT_EQ(posted.numberOf("filler 1"), 0U) << "the server gave its number to another";
    EXPECT_EQ(posted.numberOf("filler 999"), 5U);
}

TEST(NotificationQueueTest, keepsTheNewestOfEachAndFiftyInAll) {
    const Time now{};
    NotificationQueue queue(300s);
    const auto push = [&](const std::string& identifier, const std::string& title, Time since) {
        return queue.push({identifier, NotificationRequest{.title = title}, since});
    };
    EXPECT_TRUE(push("a", "old", now));
    EXPECT_TRUE(push("b", "b", now));
    EXPECT_TRUE(push("a", "new", now + 10s));
    EXPECT_EQ(queue.pop(now)->identifier, "b");
    auto taken = queue.pop(now);
    EXPECT_EQ(taken->request->title, "new");
    queue.putBack(*taken);
    EXPECT_EQ(queue.size(), 1U);
    EXPECT_TRUE(push("a", "newest", now + 20s));
    queue.putBack(*taken);
    EXPECT_EQ(queue.size(), 1U) << "a newer one is there";
    EXPECT_EQ(queue.pop(now + 321s), std::nullopt) << "too old";

    for (int count = 0; count < 50; ++count)
        EXPECT_TRUE(push(std::to_string(count), "", now));
    EXPECT_FALSE(push("50", "", now));
    EXPECT_EQ(queue.pop(now)->identifier, "1");
    (void)queue.push({"60", std::nullopt, now});
    queue.dropRemovals();
    EXPECT_EQ(queue.size(), 49U);
}

} // namespace quorva::notifications
