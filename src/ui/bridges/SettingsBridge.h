// What the settings window shows and changes, as SettingsView.qml binds to it.
#pragma once

#include "base/ChangeWatch.h"
#include "core/AppState.h"
#include "core/Updates.h"
#include "ui/bridges/EvidenceExport.h"
#include "ui/bridges/PaneHelp.h"
#include "ui/rows/RowModel.h"

#include <QObject>
#include <string_view>

namespace quorva {

/// Main thread only.
class SettingsBridge final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY changed)
    Q_PROPERTY(
        bool showNotifications READ showNotifications WRITE setShowNotifications NOTIFY changed)
    Q_PROPERTY(bool autoStart READ autoStart WRITE setAutoStart NOTIFY changed)
    Q_PROPERTY(bool checksAutomatically READ checksAutomatically WRITE setChecksAutomatically NOTIFY
                   changed)
    Q_PROPERTY(bool isChecking READ isChecking NOTIFY changed)
    Q_PROPERTY(QString updateText READ updateText NOTIFY changed)
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY changed)
    Q_PROPERTY(bool calendarEnabled READ calendarEnabled WRITE setCalendarEnabled NOTIFY changed)
    Q_PROPERTY(
        bool participantEnabled READ participantEnabled WRITE setParticipantEnabled NOTIFY changed)
    Q_PROPERTY(bool hasCalendarAccess READ hasCalendarAccess NOTIFY changed)
    Q_PROPERTY(QString myAddresses READ myAddresses WRITE setMyAddresses NOTIFY changed)
    Q_PROPERTY(QString addressesHelp READ addressesHelp NOTIFY changed)
    Q_PROPERTY(bool needsCalendarAccount READ needsCalendarAccount NOTIFY changed)
    Q_PROPERTY(bool hasAccessibility READ hasAccessibility NOTIFY changed)
    Q_PROPERTY(QString activeMeeting READ activeMeeting NOTIFY changed)
    Q_PROPERTY(QString accountsHelp READ accountsHelp NOTIFY changed)
    Q_PROPERTY(QString accessibilityHelp READ accessibilityHelp NOTIFY changed)
    Q_PROPERTY(bool isTrying READ isTrying NOTIFY changed)
    Q_PROPERTY(QString trialText READ trialText NOTIFY changed)
    Q_PROPERTY(QString limitations READ limitations NOTIFY changed)
    Q_PROPERTY(int selectedTemplate READ selectedTemplate WRITE selectTemplate NOTIFY changed)
    Q_PROPERTY(QString preview READ preview NOTIFY changed)
    Q_PROPERTY(QString websiteHelp READ websiteHelp NOTIFY changed)
    Q_PROPERTY(QString exportText READ exportText NOTIFY changed)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString address READ address CONSTANT)
    Q_PROPERTY(QObject* templates READ templates CONSTANT)
    Q_PROPERTY(QObject* allowed READ allowed CONSTANT)
    Q_PROPERTY(QObject* evidence READ evidence CONSTANT)
public:
    /// All must outlive the bridge.
    SettingsBridge(AppState& state, Updates& updates, MainLoop& loop);

    [[nodiscard]] bool launchAtLogin() const { return state.settings.launchAtLogin; }
    void setLaunchAtLogin(bool isOn) { state.settings.set(&Settings::launchAtLogin, isOn); }
    [[nodiscard]] bool showNotifications() const { return state.settings.showNotifications; }
    void setShowNotifications(bool isOn) { state.settings.set(&Settings::showNotifications, isOn); }
    [[nodiscard]] bool autoStart() const { return state.settings.autoStartMonitoring; }
    void setAutoStart(bool isOn) { state.settings.set(&Settings::autoStartMonitoring, isOn); }
    [[nodiscard]] bool checksAutomatically() const { return updates.checksAutomatically; }
    void setChecksAutomatically(bool isOn);
    [[nodiscard]] bool isChecking() const { return updates.isChecking; }
    [[nodiscard]] QString updateText() const;

    [[nodiscard]] bool isMonitoring() const { return state.isMonitoring; }
    [[nodiscard]] bool calendarEnabled() const { return state.settings.calendarMonitorEnabled; }
    void setCalendarEnabled(bool isOn);
    [[nodiscard]] bool participantEnabled() const {
        return state.settings.participantMonitorEnabled;
    }
    void setParticipantEnabled(bool isOn);
    [[nodiscard]] bool hasCalendarAccess() const { return state.permissions.hasCalendarAccess(); }
    [[nodiscard]] QString myAddresses() const; ///< with commas between them
    /// Takes addresses with commas, semicolons or blanks between them. If one of them is none,
    /// nothing changes, and `addressesHelp` says so.
    void setMyAddresses(const QString& addresses);
    [[nodiscard]] QString addressesHelp() const { return wrongAddress; }
    [[nodiscard]] bool needsCalendarAccount() const {
        return state.permissions.needsCalendarAccountSetup();
    }
    [[nodiscard]] bool hasAccessibility() const {
        return state.permissions.hasAccessibilityPermission();
    }
    [[nodiscard]] QString activeMeeting() const;
    [[nodiscard]] QString accountsHelp() const { return help.accounts; }
    [[nodiscard]] QString accessibilityHelp() const { return help.accessibility; }
    [[nodiscard]] QString limitations() const; ///< what does not work now, one line each

    [[nodiscard]] bool isTrying() const { return state.detectionTrial.isRunning; }
    [[nodiscard]] QString trialText() const; ///< output of the detection test

    [[nodiscard]] int selectedTemplate() const;
    void selectTemplate(int index);
    [[nodiscard]] QString preview() const;
    [[nodiscard]] QString exportText() const { return exported; }
    [[nodiscard]] QString websiteHelp() const { return noBrowser; }
    [[nodiscard]] QString version() const;
    [[nodiscard]] QString address() const;
    [[nodiscard]] RowModel* templates() { return &templateRows; }
    [[nodiscard]] RowModel* allowed() { return &allowedRows; }
    [[nodiscard]] RowModel* evidence() { return &evidenceRows; }

    Q_INVOKABLE void checkForUpdates() { updates.checkNow(); }
    Q_INVOKABLE void grantCalendarAccess() { state.showCalendarPermissionWindow(); }
    Q_INVOKABLE void openInternetAccounts();
    Q_INVOKABLE void openAccessibilitySettings();
    Q_INVOKABLE void removeAllowed(const QString& key);
    Q_INVOKABLE void testDetection() { state.detectionTrial.start(); }
    Q_INVOKABLE void copyEvidence();
    Q_INVOKABLE void exportEvidence();
    Q_INVOKABLE void openWebsite();

signals:
    void changed();

private:
    void update();

    AppState& state;
    Updates& updates;
    RowModel templateRows;
    RowModel allowedRows;
    RowModel evidenceRows;
    EvidenceExport evidenceExport;
    PaneHelp help;
    QString wrongAddress; ///< what is wrong with the addresses that were typed
    QString noBrowser;    ///< why the website could not be opened
    QString exported;     ///< outcome of copying or exporting
    ChangeWatch watch;    // last: follows the fields above
};

} // namespace quorva
