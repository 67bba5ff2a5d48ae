// The icon in the desktop's panel: five bars, whose colours tell whether something was found.
#pragma once

#include <QIcon>
#include <QImage>

namespace quorva {

/// The icon at `size` by `size` pixels; drawn anew for each size, so that it is sharp at any scale.
[[nodiscard]] QImage menuBarImage(bool hasActiveThreats, int size);

/// The same at the sizes that panels ask for.
[[nodiscard]] QIcon menuBarIcon(bool hasActiveThreats);

} // namespace quorva
