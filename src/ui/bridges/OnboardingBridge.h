// The first run, as OnboardingView.qml binds to it.
#pragma once

#include "base/ChangeWatch.h"
#include "core/AppDelegate.h"
#include "sources/MeetingFindings.h"
#include "ui/bridges/OnboardingViewModel.h"
#include "ui/bridges/PaneHelp.h"
#include "ui/rows/DetectionRows.h"

#include <QObject>

namespace quorva {

/// Main thread only. Lives as long as the window.
class OnboardingBridge final : public QObject {
    Q_OBJECT
    Q_PROPERTY(int step READ step NOTIFY changed)
    Q_PROPERTY(int position READ position NOTIFY changed)
    Q_PROPERTY(int total READ total NOTIFY changed)
    Q_PROPERTY(bool accessibilityGranted READ accessibilityGranted NOTIFY changed)
    Q_PROPERTY(bool accessibilityRequested READ accessibilityRequested NOTIFY changed)
    Q_PROPERTY(bool calendarGranted READ calendarGranted NOTIFY changed)
    Q_PROPERTY(bool lacksCalendars READ lacksCalendars NOTIFY changed)
    Q_PROPERTY(bool accountsRefreshed READ accountsRefreshed NOTIFY changed)
    Q_PROPERTY(bool hasAllProviders READ hasAllProviders NOTIFY changed)
    Q_PROPERTY(QString coverage READ coverage NOTIFY changed)
    Q_PROPERTY(QString accountsHelp READ accountsHelp NOTIFY changed)
    Q_PROPERTY(QString accessibilityHelp READ accessibilityHelp NOTIFY changed)
    Q_PROPERTY(QString scanTitle READ scanTitle NOTIFY changed)
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY changed)
    Q_PROPERTY(bool isScanDone READ isScanDone NOTIFY changed)
    Q_PROPERTY(bool showResults READ showResults NOTIFY changed)
    Q_PROPERTY(int verdict READ verdict NOTIFY changed)
    Q_PROPERTY(QString resultTitle READ resultTitle NOTIFY changed)
    Q_PROPERTY(QString resultText READ resultText NOTIFY changed)
    Q_PROPERTY(QString scanned READ scanned NOTIFY changed)
    Q_PROPERTY(QString uncovered READ uncovered NOTIFY changed)
    Q_PROPERTY(bool watchesCalendar READ watchesCalendar NOTIFY changed)
    Q_PROPERTY(bool watchesMeetings READ watchesMeetings NOTIFY changed)
    Q_PROPERTY(QObject* accounts READ accounts CONSTANT)
    Q_PROPERTY(QObject* indicators READ indicators CONSTANT)
    Q_PROPERTY(QObject* participants READ participants CONSTANT)
    Q_PROPERTY(QObject* upcoming READ upcoming CONSTANT)
    Q_PROPERTY(QObject* onMac READ onMac CONSTANT)
public:
    /// All must outlive the bridge.
    OnboardingBridge(AppState& state, AppDelegate& delegate, MainLoop& loop);

    OnboardingViewModel model;

    [[nodiscard]] int step() const { return static_cast<int>(model.currentStep.get()); }
    [[nodiscard]] int position() const { return model.position(); }
    [[nodiscard]] int total() const { return static_cast<int>(model.visibleSteps().size()); }
    [[nodiscard]] bool accessibilityGranted() const {
        return state.permissions.hasAccessibilityPermission();
    }
    [[nodiscard]] bool accessibilityRequested() const {
        return model.accessibilityPermissionRequested;
    }
    [[nodiscard]] bool calendarGranted() const { return state.permissions.hasCalendarAccess(); }
    [[nodiscard]] bool lacksCalendars() const { return state.permissions.lacksCalendars(); }
    [[nodiscard]] bool accountsRefreshed() const { return model.calendarAccountsRefreshed; }
    [[nodiscard]] bool hasAllProviders() const;
    [[nodiscard]] QString coverage() const;
    [[nodiscard]] QString accountsHelp() const { return help.accounts; }
    [[nodiscard]] QString accessibilityHelp() const { return help.accessibility; }
    [[nodiscard]] QString phaseText() const;
    [[nodiscard]] bool isScanDone() const { return model.scanPhase.get() == ScanPhase::done; }
    [[nodiscard]] bool showResults() const { return model.scanComplete; }
    [[nodiscard]] int verdict() const { return static_cast<int>(state.verdict()); }
    [[nodiscard]] QString scanTitle() const;
    [[nodiscard]] QString resultTitle() const;
    [[nodiscard]] QString resultText() const;
    [[nodiscard]] QString scanned() const;
    [[nodiscard]] QString uncovered() const;
    [[nodiscard]] bool watchesCalendar() const {
        return calendarGranted() && state.sources.calendar.isOn();
    }
    [[nodiscard]] bool watchesMeetings() const {
        return accessibilityGranted() && state.sources.meeting.isOn();
    }
    [[nodiscard]] RowModel* accounts() { return &accountRows; }
    [[nodiscard]] RowModel* indicators() { return rows.of(bannerFindings); }
    [[nodiscard]] RowModel* participants() { return rows.of(participantFindings); }
    [[nodiscard]] RowModel* upcoming() { return rows.of(invitationFindings); }
    [[nodiscard]] RowModel* onMac() { return rows.of(processFindings); }

    Q_INVOKABLE void next() { model.next(); }
    Q_INVOKABLE void back() { model.back(); }
    Q_INVOKABLE void requestAccessibility() { model.requestAccessibility(); }
    Q_INVOKABLE void requestCalendarAccess() { model.requestCalendarAccess(); }
    Q_INVOKABLE void refreshAccounts() { model.refreshCalendarAccounts(); }
    Q_INVOKABLE void openAccessibilitySettings();
    Q_INVOKABLE void openInternetAccounts();
    Q_INVOKABLE void complete();

signals:
    void changed();

private:
    void update();

    AppState& state;
    AppDelegate& delegate;
    RowModel accountRows;
    FindingRows rows;
    PaneHelp help;
    ChangeWatch watch; // last: follows the fields above
};

} // namespace quorva
