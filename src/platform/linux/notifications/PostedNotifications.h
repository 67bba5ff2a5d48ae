// The notifications posted in this run of the program: the server's number for each, and which
// request a pressed button belongs to.
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
/// A server's numbers are valid until it restarts, but a notification may outlive its server. So
/// the key of each button names the request by itself: "ACTION#RUN-TOKEN", where RUN is a number
/// that no other run has and TOKEN is this run's number for the request's identifier.
class PostedNotifications {
public:
    static constexpr std::size_t capacity = 1000;

    struct Press {
        std::string actionIdentifier;
        std::string requestIdentifier;

        bool operator==(const Press&) const = default;
    };

    /// `run` is a number that no other run has.
    explicit PostedNotifications(std::uint64_t run);

    /// Returns the key for a button of the request with this identifier, and remembers the
    /// identifier.
    [[nodiscard]] std::string key(std::string_view action, const std::string& identifier);

    /// What a press of the button with this key means; nothing when the key is not from this run.
    [[nodiscard]] std::optional<Press> pressOf(std::string_view key) const;

    /// Notes that the server shows `identifier` under `number`.
    void noteShown(const std::string& identifier, std::uint32_t number);

    /// The server's number for `identifier`; 0 when the server does not show it.
    [[nodiscard]] std::uint32_t numberOf(const std::string& identifier) const;

    /// Whether the server shows one of these under `number`.
    [[nodiscard]] bool isShown(std::uint32_t number) const;

    /// Notes that the server shows nothing under `number` any more. Unknown numbers are ignored.
    void noteClosed(std::uint32_t number);

    /// Drops the numbers of a server that is gone.
    void invalidateNumbers();

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
