// quorva: the application. Puts the Linux services, the core and the user interface together, makes
// sure that it is the session's only instance, and shuts down in order.
#include "base/ApplicationId.h"
#include "core/AppDelegate.h"
#include "core/AppState.h"
#include "core/CalendarConsentDialog.h"
#include "core/Updates.h"
#include "log/ProgramLog.h"
#include "platform/PreferenceKeys.h"
#include "platform/linux/accessibility/AtspiAccessibilityTree.h"
#include "platform/linux/calendars/LinuxCalendarStore.h"
#include "platform/linux/desktop/ApplicationInstance.h"
#include "platform/linux/desktop/AutostartLoginItem.h"
#include "platform/linux/desktop/DesktopSettings.h"
#include "platform/linux/desktop/LinuxPanelWatch.h"
#include "platform/linux/desktop/PackageKitUpdates.h"
#include "platform/linux/desktop/PulseAudioDevices.h"
#include "platform/linux/desktop/ScanProgramTrial.h"
#include "platform/linux/glib/GLibMainLoop.h"
#include "platform/linux/notifications/DBusNotificationCenter.h"
#include "platform/linux/processes/DesktopEntries.h"
#include "platform/linux/processes/LinuxApplications.h"
#include "platform/linux/processes/LinuxProcessTable.h"
#include "platform/linux/processes/SystemdUnitSignals.h"
#include "platform/linux/speech/SpeechDispatcher.h"
#include "platform/linux/storage/JournalLog.h"
#include "platform/linux/storage/JsonPreferences.h"
#include "platform/linux/storage/LinuxFileSystem.h"
#include "platform/linux/storage/LinuxWholeFile.h"
#include "platform/linux/storage/OpenSslSha256.h"
#include "ui/tray/QtClipboard.h"
#include "ui/tray/TrayIcon.h"
#include "ui/windows/UserInterface.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QIcon>
#include <QSessionManager>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

using namespace quorva;

constexpr int cannotStart = 1;

using Bus = GObjectPtr<GDBusConnection>;

Bus share(const Bus& bus) {
    return Bus(G_DBUS_CONNECTION(g_object_ref(bus.get())));
}

int refuse(const std::string& reason) {
    print(stderr, Printable::format("quorva: {}\n", reason));
    return cannotStart;
}

CalendarConsent consentOf(CalendarConsentDialog& dialog) {
    return {.status = [&dialog] { return dialog.status(); },
            .request =
                [&dialog](std::function<void(CalendarStore::AccessAnswer)> done) {
                    dialog.request(std::move(done));
                }};
}

/// The log with its file. It is made first, so that everything else can log.
struct Logs {
    explicit Logs(const MainLoop& loop) : log(loop, std::make_shared<JournalLog>()) {
        startLogFile(log, std::make_shared<LinuxFileSystem>(), loop, g_get_user_state_dir(),
                     {QUORVA_VERSION, QUORVA_BUILD, ::getpid()});
    }

    QuorvaLog log;
};

/// The services of this computer.
struct LinuxServices {
    explicit LinuxServices(const Bus& bus)
        : notifications(loop, logs.log, share(bus)),
          units(
              share(bus), [this] { applications.noteLaunch(); },
              [this] { applications.noteQuit(); }),
          panels(loop, share(bus)) {}

    GLibMainLoop loop;
    Logs logs{loop};
    LinuxWholeFile preferencesFile{JsonPreferences::standardPath()};
    JsonPreferences preferences{loop, logs.log, preferencesFile};
    CalendarConsentDialog consent{preferences};
    LinuxProcessTable processTable{loop, logs.log};
    DesktopEntries entries{loop, logs.log, DesktopEntries::standardPlaces()};
    LinuxApplications applications{loop, processTable, entries, ApplicationScopes()};
    LinuxCalendarStore calendars{loop, logs.log, findCalendarPlaces(preferencesFile),
                                 consentOf(consent),
                                 [this] { return read(preferences, preferenceKeys::myAddresses); }};
    AtspiAccessibilityTree accessibility;
    Platform platform{loop,      logs.log,      processTable, applications,
                      calendars, accessibility, openSslSha256};
    DBusNotificationCenter notifications;
    SpeechDispatcher speech{loop};
    PulseAudioDevices audioDevices{loop};
    QtClipboard clipboard;
    AutostartLoginItem loginItem;
    DesktopSettings systemSettings;
    PackageKitUpdates updateService{loop};
    ScanProgramTrial detectionTest;
    SystemdUnitSignals units;
    LinuxPanelWatch panels;
    AppServices services{platform,  preferences, notifications,  speech,       audioDevices,
                         clipboard, loginItem,   systemSettings, detectionTest};
};

/// The running application.
class Application {
public:
    explicit Application(const Bus& bus) : linux(bus) {
        userInterface.quit = [] { QApplication::quit(); };
        QObject::connect(qApp, &QGuiApplication::commitDataRequest, qApp,
                         [this](QSessionManager& session) {
                             session.setRestartHint(QSessionManager::RestartNever);
                             delegate.willTerminate();
                         });
        // Where the clipboard needs a window of ours to have the keyboard, there has to be one.
        objecting = state.objections.showingObjectionToast.observe([this](bool isFiled) {
            if (isFiled && linux.clipboard.isWaiting())
                activate();
        });
        delegate.didFinishLaunching();
    }

    /// What the actions of the desktop entry do; without one, the popover opens.
    void activate(const std::string& action = {}) {
        if (action == "history")
            userInterface.openHistory();
        else if (action == "settings")
            userInterface.openSettings();
        else
            userInterface.openPopover(tray.geometry());
    }

    int run() {
        const int status = QApplication::exec();
        delegate.willTerminate();
        return status;
    }

private:
    LinuxServices linux;
    AppState state{linux.services};
    AppDelegate delegate{state, linux.loop};
    Updates updates{linux.loop, linux.preferences, linux.updateService};
    UserInterface userInterface{state, delegate, linux.consent, updates, linux.loop};
    TrayIcon tray{state,
                  linux.loop,
                  linux.panels,
                  {.openPopover = [this] { activate(); },
                   .openHistory = [this] { userInterface.openHistory(); },
                   .openSettings = [this] { userInterface.openSettings(); },
                   .quit = [] { QApplication::quit(); }},
                  [this](std::optional<QRect> place) { userInterface.togglePopover(place); }};
    Subscription objecting;
};

int run(char* programName) {
    std::unique_ptr<Application> application;
    std::string reason;
    auto bus = ApplicationInstance::openSessionBus(reason);
    auto claim = ApplicationInstance::claim(bus ? share(bus) : nullptr,
                                            {.onActivate =
                                                 [&](const Activation& activation) {
                                                     // Qt's windows look for it there.
                                                     if (!activation.token.empty())
                                                         qputenv("XDG_ACTIVATION_TOKEN",
                                                                 activation.token.c_str());
                                                     if (application)
                                                         application->activate(activation.action);
                                                 },
                                             .onLost = [] { QApplication::quit(); }});
    using Kind = ApplicationInstance::Claim::Kind;
    if (claim.kind == Kind::noBus)
        return refuse("There is no D-Bus session here, which everything on the desktop is reached "
                      "through: start Quorva from within a desktop session. (" +
                      (bus ? claim.reason : reason) + ")");
    if (claim.kind == Kind::second) {
        print(stdout, Printable::format("Quorva is running already{}.\n",
                                        claim.hasAnswered ? " and shows itself"
                                                          : ", but does not answer just now"));
        return EXIT_SUCCESS;
    }
    if (claim.kind == Kind::taken)
        return refuse("Another program has Quorva's name on the session bus, so that Quorva could "
                      "not be reached: end it, then start Quorva again. It is " +
                      claim.reason + ".");
    if (!LinuxPanelWatch::hasDisplay())
        return refuse("There is no display to show anything on: start Quorva from within a "
                      "desktop session.");

    // No options are taken, Qt's own included; and Qt must share GLib's loop.
    qunsetenv("QT_NO_GLIB");
    // On a Wayland compositor without input devices, Qt 6.4 crashes when a text field asks its own
    // input context for a language. Composed characters are enough for e-mail addresses.
    if (!qEnvironmentVariableIsSet("QT_IM_MODULE"))
        qputenv("QT_IM_MODULE", "compose");
    int count = 1;
    char* arguments[] = {programName, nullptr};
    QApplication qt(count, arguments);
    QApplication::setApplicationName("quorva");
    QApplication::setApplicationDisplayName("Quorva");
    QApplication::setApplicationVersion(QUORVA_VERSION);
    QApplication::setDesktopFileName(applicationId);
    QApplication::setWindowIcon(QIcon::fromTheme(applicationId));
    QApplication::setQuitOnLastWindowClosed(false);

    const auto quit = [] { QApplication::quit(); };
    const auto onInterrupt = GLibMainLoop::onSignal(SIGINT, quit);
    const auto onTerminate = GLibMainLoop::onSignal(SIGTERM, quit);
    const auto onHangUp = GLibMainLoop::onSignal(SIGHUP, quit);
    application = std::make_unique<Application>(bus);
    const int status = application->run();
    application.reset();
    return status;
}

} // namespace

int main(int, char* texts[]) {
    try {
        const int status = run(texts[0]);
        // Threads of libraries that can't be ended may still be at work, and must not find these
        // libraries being taken apart. All of ours is stored by now.
        std::fflush(nullptr);
        ::_exit(status);
    } catch (const std::exception& failure) {
        return refuse(failure.what());
    }
}
