// The small panel that announces a detection in the corner of the screen: what it says, and for how
// long. How it looks is the user interface's.
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

    /// What the panel shows; nothing while there is no panel.
    Published<std::optional<BotAlert>, AlertPanel> alert;

    /// Shows an alert for 8 seconds, in place of the one that shows.
    void show(BotAlert next);

    /// Takes the panel away at once.
    void dismiss();

private:
    MainLoop& loop;
    Timer dismissTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
