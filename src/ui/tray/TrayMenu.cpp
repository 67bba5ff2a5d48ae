#include "ui/tray/TrayMenu.h"

#include <utility>

namespace quorva {
namespace {

/// A single ampersand marks a menu's shortcut, so it is doubled.
QString menuText(const std::string& text) {
    return QString::fromStdString(text).replace(u'&', QStringLiteral("&&"));
}

} // namespace

TrayMenu::TrayMenu(AppState& state_, TrayCommands commands_)
    : state(state_), commands(std::move(commands_)) {
    const auto add = [this](const QString& text, Task task) {
        return widget.addAction(text, &widget, [task = std::move(task)] {
            if (task)
                task();
        });
    };
    stateLine = add({}, {});
    stateLine->setEnabled(false);
    endOfLimitations = widget.addSeparator();
    add(QStringLiteral("Open Quorva"), commands.openPopover);
    object = add(QStringLiteral("Object to AI recording"), [this] { state.objectToFirst(); });
    add(QStringLiteral("Refresh all scans"), [this] {
        state.startMonitoring();
        state.refreshAllScans();
    });
    add(QStringLiteral("View detection history"), commands.openHistory);
    monitoring = add({}, [this] {
        if (state.isMonitoring)
            state.stopMonitoring();
        else
            state.startMonitoring();
    });
    add(QStringLiteral("Open settings"), commands.openSettings);
    widget.addSeparator();
    add(QStringLiteral("Quit Quorva"), commands.quit);
    update();
}

void TrayMenu::update() {
    stateLine->setText(menuText(state.stateText()));
    object->setEnabled(state.totalThreatCount() > 0);
    monitoring->setText(state.isMonitoring ? QStringLiteral("Stop monitoring")
                                           : QStringLiteral("Start monitoring"));
    updateLimitations();
}

void TrayMenu::updateLimitations() {
    if (shown == *state.limitations.all)
        return;
    shown = *state.limitations.all;
    limitationLines.clear();
    for (const auto& limitation : shown) {
        auto line = std::make_unique<QAction>(menuText(limitation.text));
        line->setEnabled(false);
        widget.insertAction(endOfLimitations, line.get());
        limitationLines.push_back(std::move(line));
    }
}

} // namespace quorva
