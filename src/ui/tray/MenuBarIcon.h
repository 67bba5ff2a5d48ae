// The icon in the desktop's panel: five bars, whose colours show the verdict, and a mark beside the
// short ones that tells the verdicts apart without colours.
#pragma once

#include "core/Verdict.h"

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
[[nodiscard]] std::array<IconBar, 5> iconBars(Verdict verdict);

/// The icon at `size` by `size` pixels, drawn for that size so that it is sharp at any scale.
[[nodiscard]] QImage menuBarImage(Verdict verdict, int size);

/// The same, in the sizes that panels ask for.
[[nodiscard]] QIcon menuBarIcon(Verdict verdict);

} // namespace quorva
