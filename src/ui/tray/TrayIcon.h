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
    /// All must outlive the icon. `onActivate` gets the icon's place on the screen, if the desktop
    /// reports it. The icon appears as soon as there is a panel; `state.hasTray` becomes false
    /// after 10 seconds without one.
    TrayIcon(AppState& state, MainLoop& loop, PanelWatch& panels, TrayCommands commands,
             std::function<void(std::optional<QRect>)> onActivate);

    /// The icon's place on the screen, if it is known.
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
    std::optional<Verdict> shownVerdict;
    QString shownToolTip;
    bool isUpdateDue = false;
    Timer panelTimeout;
    std::vector<Subscription> subscriptions;
    Lifetime lifetime; // last: destroyed first
};

} // namespace quorva
