// The calls to a notification server and its replies (Desktop Notifications Specification 1.2,
// interface org.freedesktop.Notifications). Pure functions, callable from any thread.
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

/// The abilities of a server that make a difference here.
struct Capabilities {
    bool actions = false;
    bool bodyMarkup = false;

    bool operator==(const Capabilities&) const = default;
};

/// From the reply to GetCapabilities; none where the reply is null or not of the expected type.
[[nodiscard]] Capabilities decodeCapabilities(GVariant* reply);

/// From the reply to Notify: the server's number for the notification. Nothing where the reply is
/// null, not of the expected type, or the invalid number 0.
[[nodiscard]] std::optional<std::uint32_t> decodeNumber(GVariant* reply);

enum class Lines { keep, join };

/// Makes a text safe to show: valid UTF-8 of at most `maxCharacters`, without control characters,
/// marks that change the direction of writing, and noncharacters (which XML forbids). A text that
/// is cut ends in "…", and is never cut within what is seen as one character. Line breaks become
/// "\n" or blanks.
[[nodiscard]] std::string plainText(std::string_view text, std::size_t maxCharacters, Lines lines);

/// Replaces the characters that have a meaning in body markup by their entities.
[[nodiscard]] std::string escaped(std::string_view text);

/// A button as the server gets it: the key that it reports, and the title that it shows.
using Button = std::pair<std::string, std::string>;

/// The parameters of Notify; floating. `replaces` is the server's number of the notification to be
/// replaced, or 0. A server without actions gets no buttons.
[[nodiscard]] GVariant* encode(const NotificationRequest& request,
                               const std::vector<Button>& buttons, std::uint32_t replaces,
                               const Capabilities& capabilities);

} // namespace quorva::notifications
