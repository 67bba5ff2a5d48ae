// All windows of the program: shows them on request or when the state asks for them, and closes
// them.
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

/// Main thread only. Needs a QApplication. Loads nothing of Qt Quick until the first window is
/// shown.
class UserInterface {
public:
    /// All must outlive the user interface. Windows that the state already asks for are shown soon.
    UserInterface(AppState& state, AppDelegate& delegate, CalendarConsentDialog& consent,
                  Updates& updates, MainLoop& loop);
    ~UserInterface();

    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;

    /// The action of "Quit Quorva"; may be empty.
    Task quit;

    /// Shows the popover at the tray icon, if the desktop says where that is.
    void openPopover(std::optional<QRect> trayIconGeometry = std::nullopt);
    void closePopover();
    /// Opens or closes the popover, when the user presses the tray icon. If that press has just
    /// closed it by taking the focus, it stays closed.
    void togglePopover(std::optional<QRect> trayIconGeometry = std::nullopt);

    /// Opens the popover with the detection history.
    void openHistory();

    void openSettings();

    /// Whether Qt Quick is loaded.
    [[nodiscard]] bool isLoaded() const { return windows.isLoaded(); }
    /// The window of a view; null when there is none.
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
    Lifetime lifetime; // last: destroyed first
};

} // namespace quorva
