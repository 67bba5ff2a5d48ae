#include "ui/tray/TrayIcon.h"

#include "ui/tray/MenuBarIcon.h"

#include <utility>

namespace quorva {

TrayIcon::TrayIcon(AppState& state_, MainLoop& loop_, PanelWatch& panels_, TrayCommands commands,
                   std::function<void(std::optional<QRect>)> onActivate_)
    : state(state_),
      loop(loop_),
      panels(panels_),
      menu(state_, std::move(commands)),
      onActivate(std::move(onActivate_)) {
    follow();
    subscriptions.push_back(panels.onChange(lifetime.guard([this] { followPanels(); })));
    followPanels();
}

std::optional<QRect> TrayIcon::geometry() const {
    const auto place = icon ? icon->geometry() : QRect();
    return place.isEmpty() ? std::nullopt : std::optional(place);
}

void TrayIcon::follow() {
    const auto follow = [this](auto& field) {
        subscriptions.push_back(
            field.observe(lifetime.guard([this](const auto&) { scheduleUpdate(); })));
    };
    follow(state.isMonitoring);
    follow(state.findings);
    follow(state.limitations.all);
    for (const auto* const source : state.sources)
        follow(source->state);
}

/// A panel may start after the program, and may restart: wait before reporting that there is none.
void TrayIcon::followPanels() {
    constexpr Seconds longestWait{10.0};
    panelTimeout.reset();
    if (panels.hasPanel()) {
        show();
        state.limitations.setTray(true);
    } else {
        panelTimeout =
            loop.after(longestWait, lifetime.guard([this] { state.limitations.setTray(false); }));
    }
}

/// With the first icon Qt chooses, for good, between D-Bus and X11, so create none before there is
/// a panel. Qt handles a restarted panel by itself.
void TrayIcon::show() {
    if (icon)
        return;
    icon = std::make_unique<QSystemTrayIcon>();
    QObject::connect(icon.get(), &QSystemTrayIcon::activated, icon.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger)
                             onActivate(geometry());
                     });
    icon->setContextMenu(&menu.menu());
    update();
    icon->show();
}

/// Fields call observers before they change, and several often change together.
void TrayIcon::scheduleUpdate() {
    if (std::exchange(isUpdateDue, true))
        return;
    loop.post(lifetime.guard([this] {
        isUpdateDue = false;
        update();
    }));
}

/// Sets only what has changed: each call sends a message to the panel.
void TrayIcon::update() {
    menu.update();
    if (!icon)
        return;
    const auto verdict = state.verdict();
    if (std::exchange(shownVerdict, verdict) != verdict)
        icon->setIcon(menuBarIcon(verdict));
    auto toolTip = QStringLiteral("Quorva: ") + QString::fromStdString(state.stateText());
    if (const auto uncovered = uncoveredText(state.sources); !uncovered.empty())
        toolTip += '\n' + QString::fromStdString(uncovered);
    if (std::exchange(shownToolTip, toolTip) != toolTip)
        icon->setToolTip(toolTip);
}

} // namespace quorva
