// The menu of the icon in the panel: the state in words, the limitations, and everything that must
// be reachable without the popover.
#pragma once

#include "base/Lifetime.h"
#include "core/AppState.h"

#include <QMenu>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

/// The actions of menu entries that AppState does not handle itself.
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

    /// Updates the texts of the menu.
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
