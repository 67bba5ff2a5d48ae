// What is said to a notification server, and how its answers read (Desktop Notifications
// Specification 1.2, interface org.freedesktop.Notifications).
#pragma once

#include "platform/NotificationCenter.h"
#include "platform/linux/glib/Handles.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorva::notifications {

inline constexpr const char* name = "org.freedesktop.Notifications";
inline constexpr const char* path = "/org/freedesktop/Notifications";
inline constexpr const char* interface = "org.freedesktop.Notifications";

inline constexpr std::size_t maxTitle = 300; ///< characters
inline constexpr std::size_t maxBody = 4000;

/// What a server can do, as far as it matters here.
struct Capabilities {
    bool actions = false;
    bool bodyMarkup = false;

    bool operator==(const Capabilities&) const = default;
};

/// From the reply to GetCapabilities; none where it is not of the expected type.
[[nodiscard]] Capabilities decodeCapabilities(GVariant* reply);

/// From the reply to Notify: the server's number for what it shows. 0 is no number.
[[nodiscard]] std::optional<std::uint32_t> decodeNumber(GVariant* reply);

enum class Lines { keep, join };

/// The text as servers can bear it: valid UTF-8, of at most so many characters ("…" is the last one
/// of a text that was cut, which never happens within what is perceived as one), without control
/// characters, marks that turn the direction of what follows, and what XML has no room for. Line
/// breaks become "\n", or blanks.
[[nodiscard]] std::string plainText(std::string_view text, std::size_t maxCharacters, Lines lines);

/// The text with the characters spelled out that have a meaning in body markup.
[[nodiscard]] std::string escaped(std::string_view text);

/// A button as the server gets it: what it reports, and what it shows.
using Button = std::pair<std::string, std::string>;

/// The parameters of Notify; floating. `replaces` is the server's number of what shall go, or 0.
/// A server without actions gets no buttons.
[[nodiscard]] GVariant* encode(const NotificationRequest& request,
                               const std::vector<Button>& buttons, std::uint32_t replaces,
                               const Capabilities& capabilities);

} // namespace quorva::notifications
