// Any bytes as the texts of notifications and as the replies of their server. Texts are safe to
// show, the key of a button leads to its own request only, and the queue does what a plain list
// does.
#include "Expect.h"
#include "platform/linux/notifications/NotificationProtocol.h"
#include "platform/linux/notifications/NotificationQueue.h"
#include "platform/linux/notifications/PostedNotifications.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

using namespace quorva;
using namespace quorva::notifications;

namespace {

void expectSafe(const std::string& text, std::size_t maxCharacters, bool hasLines) {
    expectText(text);
    expect(static_cast<std::size_t>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size()))) <=
           maxCharacters);
    for (const char* at = text.data(); at < text.data() + text.size(); at = g_utf8_next_char(at)) {
        const auto character = g_utf8_get_char(at);
        const bool isLineBreak = character == '\n';
        expect(isLineBreak ? hasLines : g_unichar_type(character) != G_UNICODE_CONTROL);
        expect(!(character >= 0x202A && character <= 0x202E));
        expect(!(character >= 0x2066 && character <= 0x2069));
    }
}

std::string unescaped(std::string text) {
    const auto replaceEach = [&](std::string_view from, char to) {
        for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + 1))
            text.replace(at, from.size(), 1, to);
    };
    replaceEach("&lt;", '<');
    replaceEach("&gt;", '>');
    replaceEach("&amp;", '&');
    return text;
}

void showText(const std::string& bytes) {
    for (const std::size_t most : {std::size_t{1}, std::size_t{7}, maxTitle}) {
        expectSafe(plainText(bytes, most, Lines::keep), most, true);
        const auto line = plainText(bytes, most, Lines::join);
        expectSafe(line, most, false);
        expect(plainText(line, most, Lines::join) == line);
    }
    const auto markup = escaped(bytes);
    expect(markup.find_first_of("<>") == std::string::npos && unescaped(markup) == bytes);

    const NotificationRequest request{
        .identifier = bytes, .title = bytes, .body = bytes, .categoryIdentifier = bytes};
    const GVariantPtr sent(
        g_variant_ref_sink(encode(request, {{"key", bytes}}, 1, {.actions = true})));
    expect(g_variant_is_of_type(sent.get(), G_VARIANT_TYPE("(susssasa{sv}i)")) != FALSE);
    expect(g_variant_is_normal_form(sent.get()) != FALSE);
}

void readReply(const std::string& bytes) {
    for (const char* const type : {"(as)", "(u)", "(v)"}) {
        GBytes* const copy = g_bytes_new(bytes.data(), bytes.size());
        const GVariantPtr reply(
            g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE(type), copy, FALSE)));
        g_bytes_unref(copy);
        const auto number = decodeNumber(reply.get());
        expect(!number || *number != 0);
        const auto capabilities = decodeCapabilities(reply.get());
        const auto holds = [&](std::string_view name) {
            return bytes.find(name) != std::string::npos;
        };
        expect(!capabilities.actions || holds("actions"));
        expect(!capabilities.bodyMarkup || holds("body-"));
    }
}

/// The bytes as a key of a button, as an action, and as a request's identifier.
void press(const std::string& bytes) {
    constexpr std::uint64_t run = 0x1d;
    PostedNotifications posted(run);
    const auto key = posted.key("dismiss", "first");
    expect(posted.pressOf(key) == PostedNotifications::Press{"dismiss", "first"});
    if (const auto stray = posted.pressOf(bytes))
        expect(stray->requestIdentifier == "first");
    const auto own = posted.key(bytes, bytes);
    expect(posted.pressOf(own) == PostedNotifications::Press{bytes, bytes});
    expect(!PostedNotifications(run + 1).pressOf(own));
}

/// Each byte is an operation on the queue; `plain` is what it should hold.
void queue(const std::string& steps) {
    using Entry = NotificationQueue::Entry;
    constexpr Seconds newsworthy(10);
    NotificationQueue tried(newsworthy);
    std::vector<Entry> plain;
    Time now{};
    const auto drop = [&](const std::string& identifier) {
        std::erase_if(plain, [&](const Entry& entry) { return entry.identifier == identifier; });
    };
    for (const char step : steps) {
        const auto bits = static_cast<unsigned char>(step);
        const std::string identifier(1, static_cast<char>('a' + (bits >> 2U) % 60));
        Entry entry{.identifier = identifier, .request = std::nullopt, .since = now};
        if ((bits & 1U) != 0)
            entry.request.emplace();
        switch (bits & 3U) {
        case 0:
        case 1: {
            drop(identifier);
            plain.push_back(entry);
            const bool isFull = plain.size() > NotificationQueue::capacity;
            if (isFull)
                plain.erase(plain.begin());
            expect(tried.push(entry) == !isFull);
            break;
        }
        case 2:
            drop(identifier);
            tried.drop(identifier);
            break;
        default: {
            now += std::chrono::seconds(bits % 8);
            while (!plain.empty() && now - plain.front().since > newsworthy)
                plain.erase(plain.begin());
            const auto popped = tried.pop(now);
            expect(popped.has_value() == !plain.empty());
            if (popped) {
                expect(popped->identifier == plain.front().identifier);
                plain.erase(plain.begin());
            }
        }
        }
        expect(tried.size() == plain.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    showText(bytes);
    readReply(bytes);
    press(bytes);
    queue(bytes);
    return 0;
}
