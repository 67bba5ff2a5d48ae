// The positions of windows that the user has not placed. Pure functions.
#pragma once

#include <QRect>
#include <QSize>
#include <optional>

namespace quorva {

/// The popover's top left corner: at the tray icon if its place is known, otherwise in the corner
/// at the desktop's panel; always inside the area that the panels leave free.
[[nodiscard]] QPoint popoverPosition(QSize popover, const std::optional<QRect>& trayIcon,
                                     const QRect& screen, const QRect& available);

/// The alert panel's top left corner: 16 from the right edge, 8 from the top.
[[nodiscard]] QPoint alertPosition(int width, const QRect& available);

} // namespace quorva
