// The icon in the desktop's panel: five bars, whose colours tell whether something was found.
#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <array>

namespace quorva {

/// One of the bars.
struct IconBar {
    double part; ///< its length, as part of the longest one's
    QColor colour;
};

/// From top to bottom.
[[nodiscard]] std::array<IconBar, 5> iconBars(bool hasActiveThreats);

/// The icon at `size` by `size` pixels; drawn anew for each size, so that it is sharp at any scale.
[[nodiscard]] QImage menuBarImage(bool hasActiveThreats, int size);

/// The same at the sizes that panels ask for.
[[nodiscard]] QIcon menuBarIcon(bool hasActiveThreats);

} // namespace quorva
