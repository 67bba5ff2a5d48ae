// The icon in the desktop's panel (StatusNotifierItem, or XEmbed on X11, by Qt).
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/PanelWatch.h"
#include "ui/tray/TrayMenu.h"

#include <QRect>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorva {

/// Main thread only. Needs a QApplication.
class TrayIcon {
public:
    /// All must outlive the icon. `onActivate` gets the icon's place on the screen, where the
    /// desktop tells it. The icon shows as soon as there is a panel; without one for 10 seconds,
    /// `state.hasTray` says so.
    TrayIcon(AppState& state, MainLoop& loop, PanelWatch& panels, TrayCommands commands,
             std::function<void(std::optional<QRect>)> onActivate);

    /// Where the icon is on the screen, if that is known.
    [[nodiscard]] std::optional<QRect> geometry() const;

private:
    void follow();
    void followPanels();
    void show();
    void scheduleUpdate();
    void update();

    AppState& state;
    MainLoop& loop;
    PanelWatch& panels;
    TrayMenu menu;
    const std::function<void(std::optional<QRect>)> onActivate;
    std::unique_ptr<QSystemTrayIcon> icon; ///< null until there is a panel
    std::optional<bool> shownThreats;
    QString shownToolTip;
    bool isUpdateDue = false;
    Timer panelTimeout;
    std::vector<Subscription> subscriptions;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
