// The text of the small panel that announces a detection in the corner of the screen, and how long
// it is shown. The user interface draws it.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "sources/Finding.h"

#include <optional>

namespace quorva {

/// Main thread only.
class AlertPanel {
public:
    /// The loop must outlive the panel.
    explicit AlertPanel(MainLoop& loop);

    /// The alert that is shown; nothing while the panel is hidden.
    Published<std::optional<BotAlert>, AlertPanel> alert;

    /// Shows an alert for 8 seconds and replaces the one that is shown.
    void show(BotAlert next);

    /// Hides the panel at once.
    void dismiss();

private:
    MainLoop& loop;
    Timer dismissTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
