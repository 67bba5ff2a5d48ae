// The menu of the icon in the panel: the state in words, what cannot be done, and everything that
// must be reachable where there is no popover.
#pragma once

#include "base/Lifetime.h"
#include "core/AppState.h"

#include <QMenu>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

/// What the entries of the menu do besides what AppState does itself.
struct TrayCommands {
    Task openPopover;
    Task openHistory;
    Task openSettings;
    Task quit;
};

/// Main thread only. Needs a QApplication.
class TrayMenu {
public:
    /// The state must outlive the menu.
    TrayMenu(AppState& state, TrayCommands commands);

    [[nodiscard]] QMenu& menu() { return widget; }

    /// Takes the texts over as they are now.
    void update();

private:
    void updateLimitations();

    AppState& state;
    const TrayCommands commands;
    QMenu widget;
    QAction* stateLine = nullptr;
    QAction* endOfLimitations = nullptr;
    QAction* object = nullptr;
    QAction* monitoring = nullptr;
    std::vector<std::unique_ptr<QAction>> limitationLines;
    std::vector<Limitation> shown;
};

} // namespace quorva
