// Where windows go that the user has not placed. Pure functions.
#pragma once

#include <QRect>
#include <QSize>
#include <optional>

namespace quorva {

/// Where the popover's top left corner goes: at the tray icon, where that is known, else in the
/// corner where the desktop's panel is; always wholly within what the panels leave free.
[[nodiscard]] QPoint popoverPosition(QSize popover, const std::optional<QRect>& trayIcon,
                                     const QRect& screen, const QRect& available);

/// Where the alert panel's top left corner goes: 16 from the right edge, 8 below the top.
[[nodiscard]] QPoint alertPosition(int width, const QRect& available);

} // namespace quorva
