#include "ui/windows/UserInterface.h"

#include "ui/windows/Placement.h"
#include "ui/windows/RoundedMask.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace quorva {

namespace {

constexpr char popoverView[] = "MenuBarView";
constexpr char alertView[] = "BotAlertBanner";
constexpr char calendarView[] = "CalendarPermissionHelper";
constexpr char consentView[] = "CalendarConsent";
constexpr char onboardingView[] = "OnboardingView";
constexpr char settingsView[] = "SettingsView";

QScreen* screenAt(QPoint point) {
    auto* const screen = QGuiApplication::screenAt(point);
    return screen ? screen : QGuiApplication::primaryScreen();
}

void bringToFront(QWindow& window) {
    window.show();
    window.raise();
    window.requestActivate();
}

/// Closes a window as the desktop does on the user's behalf.
void onClosed(QWindow& window, QObject& context, Task task) {
    QObject::connect(&window, &QWindow::visibleChanged, &context,
                     [task = std::move(task)](bool isVisible) {
                         if (!isVisible)
                             task();
                     });
}

} // namespace

UserInterface::UserInterface(AppState& state_, AppDelegate& delegate_,
                             CalendarConsentDialog& consent_, Updates& updates_, MainLoop& loop_)
    : state(state_),
      delegate(delegate_),
      consent(consent_),
      updates(updates_),
      loop(loop_),
      windows(loop_),
      watch(loop_, [this] { follow(); }) {
    QGuiApplication::setQuitOnLastWindowClosed(false); // the tray icon stays
    watch.follow(state.alertPanel.alert, state.calendarWindow, state.showingLogSheet,
                 consent.isAsking, delegate.onboardingWindow);
}

UserInterface::~UserInterface() = default;

void UserInterface::follow() {
    followAlert();
    followCalendarWindow();
    followConsent();
    followOnboarding();
    if (state.showingLogSheet) {
        const auto* const popover = window(popoverView);
        if (!popover || !popover->isVisible())
            openPopover(trayIcon);
    }
}

void UserInterface::openPopover(std::optional<QRect> trayIconGeometry) {
    trayIcon = trayIconGeometry;
    if (!popoverBridge) {
        popoverBridge = std::make_unique<PopoverBridge>(state, loop);
        popoverBridge->onClose = [this] { closePopover(); };
        popoverBridge->onOpenSettings = [this] { openSettings(); };
        popoverBridge->onQuit = [this] {
            if (quit)
                quit();
        };
    }
    const bool isNew = !window(popoverView);
    auto* const popover = windows.make(popoverView, *popoverBridge);
    if (!popover)
        return;
    if (isNew)
        watchPopover(*popover);
    popoverBridge->setVisible(true);
    placePopover();
    bringToFront(*popover);
}

void UserInterface::watchPopover(QQuickWindow& popover) {
    QObject::connect(&popover, &QWindow::activeChanged, &popover, [this, &popover] {
        if (popover.isActive()) {
            hasPopoverBeenActive = true;
        } else if (hasPopoverBeenActive && popover.isVisible()) {
            popoverLostFocusAt = loop.now();
            closePopover();
        }
    });
    QObject::connect(&popover, &QWindow::heightChanged, &popover, [this] { placePopover(); });
    onClosed(popover, popover, [this] {
        hasPopoverBeenActive = false;
        popoverBridge->setVisible(false);
        if (state.showingLogSheet)
            state.closeHistory();
    });
}

void UserInterface::placePopover() {
    auto* const popover = window(popoverView);
    const auto* const screen = screenAt(trayIcon ? trayIcon->center() : QCursor::pos());
    if (!popover || !screen)
        return;
    popover->setProperty("maximumContentHeight", screen->availableGeometry().height() - 16);
    popover->setPosition(popoverPosition(popover->size(), trayIcon, screen->geometry(),
                                         screen->availableGeometry()));
}

void UserInterface::closePopover() {
    windows.hide(popoverView);
}

void UserInterface::togglePopover(std::optional<QRect> trayIconGeometry) {
    constexpr Seconds samePress{0.3};
    const auto* const popover = window(popoverView);
    if (popover && popover->isVisible())
        closePopover();
    else if (!popoverLostFocusAt || loop.now() - *popoverLostFocusAt > samePress)
        openPopover(trayIconGeometry);
    popoverLostFocusAt.reset();
}

void UserInterface::openHistory() {
    state.showHistory();
    openPopover(trayIcon);
}

void UserInterface::openSettings() {
    if (!settingsBridge)
        settingsBridge = std::make_unique<SettingsBridge>(state, updates, loop);
    const bool isNew = !window(settingsView);
    auto* const settings = windows.make(settingsView, *settingsBridge);
    if (!settings)
        return;
    if (isNew)
        onClosed(*settings, *settings, [this] { windows.close(settingsView); });
    bringToFront(*settings);
}

void UserInterface::followAlert() {
    const auto& alert = state.alertPanel.alert.get();
    if (!alert)
        return windows.close(alertView);
    if (!alertBridge)
        alertBridge = std::make_unique<AlertBridge>(state.alertPanel);
    alertBridge->show(*alert);
    if (auto* const panel = windows.make(alertView, *alertBridge)) {
        placeAlert();
        panel->show(); // without taking the focus from the user's work
        panel->raise();
    }
}

void UserInterface::placeAlert() {
    auto* const panel = window(alertView);
    const auto* const screen = screenAt(QCursor::pos());
    if (!panel || !screen)
        return;
    const int shadow = panel->property("shadowMargin").toInt();
    const QPoint position = alertPosition(panel->width() - 2 * shadow, screen->availableGeometry());
    panel->setPosition(position - QPoint(shadow, shadow));
    if (windows.desktopHints() && !windows.desktopHints()->isTranslucent())
        panel->setMask(roundedMask(panel->size(), panel->property("radius").toInt()));
}

void UserInterface::followCalendarWindow() {
    if (!state.calendarWindow)
        return windows.close(calendarView);
    if (window(calendarView))
        return bringToFront(*window(calendarView));
    if (!calendarBridge)
        calendarBridge = std::make_unique<CalendarBridge>(state, consent, loop);
    if (auto* const helper = windows.make(calendarView, *calendarBridge)) {
        onClosed(*helper, *helper, [this] {
            if (state.calendarWindow)
                state.closeCalendarPermissionWindow();
        });
        bringToFront(*helper);
    }
}

void UserInterface::followConsent() {
    if (!consent.isAsking)
        return windows.close(consentView);
    if (window(consentView))
        return;
    if (!calendarBridge)
        calendarBridge = std::make_unique<CalendarBridge>(state, consent, loop);
    if (auto* const question = windows.make(consentView, *calendarBridge)) {
        onClosed(*question, *question, [this] { consent.answer(false); });
        bringToFront(*question);
    }
}

void UserInterface::followOnboarding() {
    if (!delegate.onboardingWindow) {
        windows.close(onboardingView);
        return;
    }
    if (window(onboardingView))
        return;
    onboardingBridge = std::make_unique<OnboardingBridge>(state, delegate, loop);
    auto* const onboarding = windows.make(onboardingView, *onboardingBridge);
    if (!onboarding)
        return;
    onboardingBridge->model.onBringToFront = [this] {
        if (auto* const present = window(onboardingView))
            bringToFront(*present);
    };
    onClosed(*onboarding, *onboarding, [this] {
        if (delegate.onboardingWindow)
            delegate.closeOnboardingWindow();
    });
    // Polling of the first run ends with its window.
    QObject::connect(onboarding, &QObject::destroyed,
                     lifetime.guard([this, closed = onboardingBridge.get()](QObject*) {
                         if (onboardingBridge.get() == closed)
                             onboardingBridge.reset();
                     }));
    bringToFront(*onboarding);
}

} // namespace quorva
