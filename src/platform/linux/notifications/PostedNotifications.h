// What has been posted in this run of the program: which number the server gave to what, and how a
// press of a button finds its way back to the request.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace quorva {

/// Remembers the newest 1,000 identifiers. Main thread only.
///
/// A server's numbers are good until it restarts, but what it shows may outlive it. So the key of
/// each button leads back to the request by itself: "ACTION#RUN-TOKEN", where RUN is a number that
/// no other run has and TOKEN is this run's number for the request's identifier.
class PostedNotifications {
public:
    static constexpr std::size_t capacity = 1000;

    struct Press {
        std::string actionIdentifier;
        std::string requestIdentifier;

        bool operator==(const Press&) const = default;
    };

    /// `run` differs from those of other runs.
    explicit PostedNotifications(std::uint64_t run);

    /// The key of a button of the request with this identifier, which is remembered from then on.
    [[nodiscard]] std::string key(std::string_view action, const std::string& identifier);

    /// What a press of the button with this key means; nothing when the key is none of this run.
    [[nodiscard]] std::optional<Press> pressOf(std::string_view key) const;

    /// The server shows `identifier` under `number` from now on.
    void noteShown(const std::string& identifier, std::uint32_t number);

    /// The server's number for `identifier`; 0 when it shows no such notification.
    [[nodiscard]] std::uint32_t numberOf(const std::string& identifier) const;

    /// Whether the server shows one of these under `number`.
    [[nodiscard]] bool isShown(std::uint32_t number) const;

    /// The server shows nothing under `number` any more. Unknown numbers do nothing.
    void noteClosed(std::uint32_t number);

    /// The server's numbers mean nothing any more.
    void forgetNumbers();

private:
    struct Entry {
        std::string identifier;
        std::uint64_t token = 0;
        std::uint32_t number = 0;
    };
    Entry& entryOf(const std::string& identifier);

    const std::string run;
    std::deque<Entry> entries; ///< in the order of their tokens
    std::uint64_t lastToken = 0;
};

} // namespace quorva
