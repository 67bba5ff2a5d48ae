// The symbols of the views, and their icons: an icon of the desktop's theme, by its name in the
// Adwaita icon theme, or, if the theme has none, one of this program's (icons/SYMBOL.svg).
#pragma once

#include <array>
#include <string_view>

namespace quorva {

struct SymbolIcon {
    std::string_view symbol;
    std::string_view icon; ///< empty: themes have no equivalent
};

// clang-format off
inline constexpr std::array symbolIcons{
    SymbolIcon{"arrow.clockwise",               "view-refresh-symbolic"},
    SymbolIcon{"arrow.right.circle.fill",       "go-next-symbolic"},
    SymbolIcon{"arrow.up",                      "go-up-symbolic"},
    SymbolIcon{"calendar",                      "x-office-calendar-symbolic"},
    SymbolIcon{"calendar.badge.checkmark",      ""},
    SymbolIcon{"calendar.badge.exclamationmark", ""},
    SymbolIcon{"calendar.badge.plus",           ""},
    SymbolIcon{"checkmark",                     "object-select-symbolic"},
    SymbolIcon{"checkmark.circle.fill",         ""},
    SymbolIcon{"checkmark.shield",              ""},
    SymbolIcon{"checkmark.shield.fill",         ""},
    SymbolIcon{"chevron.down",                  "pan-down-symbolic"},
    SymbolIcon{"chevron.left",                  "go-previous-symbolic"},
    SymbolIcon{"clock.arrow.circlepath",        "document-open-recent-symbolic"},
    SymbolIcon{"desktopcomputer",               "computer-symbolic"},
    SymbolIcon{"display",                       "video-display-symbolic"},
    SymbolIcon{"doc.on.doc",                    "edit-copy-symbolic"},
    SymbolIcon{"ellipsis",                      "view-more-symbolic"},
    SymbolIcon{"envelope.fill",                 "mail-unread-symbolic"},
    SymbolIcon{"exclamationmark",               ""},
    SymbolIcon{"exclamationmark.shield.fill",   ""},
    SymbolIcon{"exclamationmark.triangle.fill", "dialog-warning-symbolic"},
    SymbolIcon{"eye.slash.fill",                "view-conceal-symbolic"},
    SymbolIcon{"g.circle.fill",                 ""},
    SymbolIcon{"gear",                          "emblem-system-symbolic"},
    SymbolIcon{"hand.raised",                   ""},
    SymbolIcon{"hand.raised.fill",              ""},
    SymbolIcon{"icloud.fill",                   "weather-overcast-symbolic"},
    SymbolIcon{"info.circle",                   ""},
    SymbolIcon{"info.circle.fill",              ""},
    SymbolIcon{"lightbulb.fill",                ""},
    SymbolIcon{"lock.fill",                     "changes-prevent-symbolic"},
    SymbolIcon{"lock.shield.fill",              ""},
    SymbolIcon{"magnifyingglass",               "system-search-symbolic"},
    SymbolIcon{"person.2",                      "system-users-symbolic"},
    SymbolIcon{"person.2.fill",                 "system-users-symbolic"},
    SymbolIcon{"person.slash",                  ""},
    SymbolIcon{"power",                         "system-shutdown-symbolic"},
    SymbolIcon{"record.circle.fill",            "media-record-symbolic"},
    SymbolIcon{"square.and.arrow.down",         "document-save-symbolic"},
    SymbolIcon{"square.and.arrow.up",           "emblem-shared-symbolic"},
    SymbolIcon{"video.fill",                    "camera-video-symbolic"},
    SymbolIcon{"wifi.slash",                    "network-wireless-disabled-symbolic"},
    SymbolIcon{"xmark",                         "window-close-symbolic"},
    SymbolIcon{"xmark.bin.fill",                "user-trash-symbolic"},
    SymbolIcon{"xmark.circle.fill",             ""},
};
// clang-format on

} // namespace quorva
