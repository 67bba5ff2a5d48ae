// The icon in the desktop's panel: five bars, whose colours show whether something was found.
#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <array>

namespace quorva {

/// One of the bars.
struct IconBar {
    double part; ///< its length relative to the longest bar
    QColor colour;
};

/// From top to bottom.
[[nodiscard]] std::array<IconBar, 5> iconBars(bool hasActiveThreats);

/// The icon at `size` by `size` pixels, drawn for that size so that it is sharp at any scale.
[[nodiscard]] QImage menuBarImage(bool hasActiveThreats, int size);

/// The same, in the sizes that panels ask for.
[[nodiscard]] QIcon menuBarIcon(bool hasActiveThreats);

} // namespace quorva
