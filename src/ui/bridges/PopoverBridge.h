// What the popover shows and does: the application state, as MenuBarView.qml binds to it. It holds
// no state except the outcome of its own buttons.
#pragma once

#include "base/ChangeWatch.h"
#include "core/AppState.h"
#include "sources/MeetingFindings.h"
#include "ui/bridges/PaneHelp.h"
#include "ui/rows/DetectionRows.h"

#include <QObject>

namespace quorva {

/// Main thread only.
class PopoverBridge final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY changed)
    Q_PROPERTY(int threatCount READ threatCount NOTIFY changed)
    Q_PROPERTY(int verdict READ verdict NOTIFY changed)
    Q_PROPERTY(QString pillText READ pillText NOTIFY changed)
    Q_PROPERTY(QString pillLabel READ pillLabel NOTIFY changed)
    Q_PROPERTY(QString explanation READ explanation NOTIFY changed)
    Q_PROPERTY(bool needsCalendarAccess READ needsCalendarAccess NOTIFY changed)
    Q_PROPERTY(bool needsCalendarAccount READ needsCalendarAccount NOTIFY changed)
    Q_PROPERTY(bool needsAccessibility READ needsAccessibility NOTIFY changed)
    Q_PROPERTY(QVariantList chips READ chips NOTIFY changed)
    Q_PROPERTY(QString uncovered READ uncovered NOTIFY changed)
    Q_PROPERTY(QString accountsHelp READ accountsHelp NOTIFY changed)
    Q_PROPERTY(QString accessibilityHelp READ accessibilityHelp NOTIFY changed)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY changed)
    Q_PROPERTY(QString lastScan READ lastScan NOTIFY changed)
    Q_PROPERTY(bool showsObjectionToast READ showsObjectionToast NOTIFY changed)
    Q_PROPERTY(QString objectionToast READ objectionToast NOTIFY changed)
    Q_PROPERTY(bool showsShareToast READ showsShareToast NOTIFY changed)
    Q_PROPERTY(bool showsHistory READ showsHistory NOTIFY changed)
    Q_PROPERTY(QObject* indicators READ indicators CONSTANT)
    Q_PROPERTY(QObject* participants READ participants CONSTANT)
    Q_PROPERTY(QObject* upcoming READ upcoming CONSTANT)
    Q_PROPERTY(QObject* onMac READ onMac CONSTANT)
    Q_PROPERTY(QObject* history READ history CONSTANT)
public:
    /// Both must outlive the bridge.
    PopoverBridge(AppState& state, MainLoop& loop);

    /// The actions of the footer's buttons; both may be empty.
    Task onOpenSettings;
    Task onQuit;
    /// Asks to close the popover.
    Task onClose;

    [[nodiscard]] bool isMonitoring() const { return state.isMonitoring; }
    [[nodiscard]] int threatCount() const { return static_cast<int>(state.totalThreatCount()); }
    [[nodiscard]] int verdict() const { return static_cast<int>(state.verdict()); }
    [[nodiscard]] QString pillText() const;
    [[nodiscard]] QString pillLabel() const;
    [[nodiscard]] QString explanation() const;
    [[nodiscard]] bool needsCalendarAccess() const;
    [[nodiscard]] bool needsCalendarAccount() const;
    [[nodiscard]] bool needsAccessibility() const;
    [[nodiscard]] QVariantList chips() const; ///< name, symbol, look and reason of each source
    [[nodiscard]] QString uncovered() const;
    [[nodiscard]] QString accountsHelp() const { return help.accounts; }
    [[nodiscard]] QString accessibilityHelp() const { return help.accessibility; }
    [[nodiscard]] bool isScanning() const;
    [[nodiscard]] QString lastScan() const;
    [[nodiscard]] bool showsObjectionToast() const {
        return state.objections.showingObjectionToast;
    }
    [[nodiscard]] QString objectionToast() const;
    [[nodiscard]] bool showsShareToast() const { return static_cast<bool>(shareToastTimer); }
    [[nodiscard]] bool showsHistory() const { return state.showingLogSheet; }
    [[nodiscard]] RowModel* indicators() { return rows.of(bannerFindings); }
    [[nodiscard]] RowModel* participants() { return rows.of(participantFindings); }
    [[nodiscard]] RowModel* upcoming() { return rows.of(invitationFindings); }
    [[nodiscard]] RowModel* onMac() { return rows.of(processFindings); }
    [[nodiscard]] RowModel* history() { return &historyRows; }

    /// While the popover is visible, the times in it are updated.
    void setVisible(bool isVisible);

    Q_INVOKABLE void toggleMonitoring();
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void showHistory() { state.showHistory(); }
    Q_INVOKABLE void closeHistory() { state.closeHistory(); }
    Q_INVOKABLE void objectToAny() { state.objectToFirst(); }
    Q_INVOKABLE void objectToParticipant(const QString& id);
    Q_INVOKABLE void objectToCalendar(const QString& id);
    Q_INVOKABLE void dismiss(const QString& id);
    Q_INVOKABLE void allow(const QString& key);
    Q_INVOKABLE void allowCalendarAccess() { state.showCalendarPermissionWindow(); }
    Q_INVOKABLE void openInternetAccounts();
    Q_INVOKABLE void openAccessibilitySettings();
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void share();
    Q_INVOKABLE void quit();
    Q_INVOKABLE void close();

signals:
    void changed();

private:
    void update();

    AppState& state;
    MainLoop& loop;
    FindingRows rows;
    RowModel historyRows;
    PaneHelp help;
    std::optional<Time> refreshedAt;
    Timer shareToastTimer;
    Timer refreshTimer;
    Timer clockTimer;
    ChangeWatch watch; // last: follows the fields above
};

} // namespace quorva
