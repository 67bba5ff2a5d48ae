// The alert panel's texts and its close button.
#pragma once

#include "core/AlertPanel.h"
#include "ui/rows/DisplayText.h"

#include <QObject>

namespace quorva {

/// Main thread only.
class AlertBridge final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString botName READ botName NOTIFY changed)
    Q_PROPERTY(QString platform READ platform NOTIFY changed)
    Q_PROPERTY(QString category READ category NOTIFY changed)
public:
    /// The panel must outlive the bridge.
    explicit AlertBridge(AlertPanel& panel_) : panel(panel_) {}

    [[nodiscard]] QString botName() const { return isolated(shown.botName); }
    [[nodiscard]] QString platform() const { return isolated(shown.platform); }
    [[nodiscard]] QString category() const { return isolated(shown.category); }

    /// The alert to show from now on.
    void show(const BotAlert& alert);

    Q_INVOKABLE void dismiss() { panel.dismiss(); }

signals:
    void changed();

private:
    AlertPanel& panel;
    BotAlert shown;
};

} // namespace quorva
