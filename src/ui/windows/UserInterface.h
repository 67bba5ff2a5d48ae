// All windows of the program: shows them when they are asked for or something wants them shown,
// and takes them away.
#pragma once

#include "base/ChangeWatch.h"
#include "core/AppDelegate.h"
#include "core/AppState.h"
#include "core/CalendarConsentDialog.h"
#include "core/Updates.h"
#include "ui/bridges/AlertBridge.h"
#include "ui/bridges/CalendarBridge.h"
#include "ui/bridges/OnboardingBridge.h"
#include "ui/bridges/PopoverBridge.h"
#include "ui/bridges/SettingsBridge.h"
#include "ui/windows/QuickWindows.h"

#include <QRect>
#include <memory>
#include <optional>

namespace quorva {

/// Main thread only. Needs a QApplication. Until a window is to be shown, nothing of Qt Quick is
/// made.
class UserInterface {
public:
    /// All must outlive the user interface. Windows that are wanted already are shown soon.
    UserInterface(AppState& state, AppDelegate& delegate, CalendarConsentDialog& consent,
                  Updates& updates, MainLoop& loop);
    ~UserInterface();

    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;

    /// What "Quit Quorva" does; may be empty.
    Task quit;

    /// Shows the popover at the tray icon, whose place on the screen some desktops tell.
    void openPopover(std::optional<QRect> trayIconGeometry = std::nullopt);
    void closePopover();
    /// Opens or closes it. What a press on the tray icon does: where that press has itself just
    /// closed the popover, by taking the focus, it stays closed.
    void togglePopover(std::optional<QRect> trayIconGeometry = std::nullopt);

    /// The popover with the detection history.
    void openHistory();

    void openSettings();

    /// Whether anything of Qt Quick is there.
    [[nodiscard]] bool isLoaded() const { return windows.isLoaded(); }
    /// A view's window, if it has been made.
    [[nodiscard]] QQuickWindow* window(const QString& view) const { return windows.find(view); }

private:
    void follow();
    void followAlert();
    void followCalendarWindow();
    void followConsent();
    void followOnboarding();
    void placePopover();
    void placeAlert();
    void watchPopover(QQuickWindow& popover);

    AppState& state;
    AppDelegate& delegate;
    CalendarConsentDialog& consent;
    Updates& updates;
    MainLoop& loop;

    std::unique_ptr<PopoverBridge> popoverBridge;
    std::unique_ptr<AlertBridge> alertBridge;
    std::unique_ptr<CalendarBridge> calendarBridge;
    std::unique_ptr<OnboardingBridge> onboardingBridge;
    std::unique_ptr<SettingsBridge> settingsBridge;
    QuickWindows windows;
    std::optional<QRect> trayIcon;
    bool hasPopoverBeenActive = false;
    std::optional<Time> popoverLostFocusAt;
    ChangeWatch watch;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
