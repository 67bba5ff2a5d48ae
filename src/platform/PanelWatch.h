// Whether the desktop has a panel for the icons of programs.
#pragma once

#include "base/Subscription.h"

namespace quorva {

/// Main thread only; no operation waits for another program.
class PanelWatch {
public:
    virtual ~PanelWatch() = default;

    /// Whether a panel accepts icons now, as far as that is known.
    [[nodiscard]] virtual bool hasPanel() const = 0;

    /// Calls `callback` on the main loop after that has changed.
    [[nodiscard]] virtual Subscription onChange(Task callback) = 0;
};

} // namespace quorva
