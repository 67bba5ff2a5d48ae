// quorva-screenshots FOLDER [SCENE [POINTS]]: shows every view in its states on made-up data and
// saves a picture of each, to be looked at by people; only those whose name begins with SCENE,
// unless it is "all"; with a font of so many points. QT_SCALE_FACTOR says how large.
#include "support/Stage.h"
#include "ui/tray/MenuBarIcon.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFont>
#include <QPainter>
#include <QThread>
#include <functional>
#include <iostream>
#include <vector>

namespace {

using namespace quorva;
using namespace std::chrono_literals;

struct Scene {
    const char* name;
    const char* view;
    std::function<void(Stage&)> set;
};

constexpr char popover[] = "MenuBarView";
constexpr char onboarding[] = "OnboardingView";
constexpr char settings[] = "SettingsView";
constexpr int usualPoints = 10;

void showEverything(Stage& stage) {
    stage.permit(true, true);
    stage.showInMeeting("This meeting is being recorded");
    stage.showInMeeting("Otter.ai Notetaker");
    stage.showInMeeting("Fireflies.ai Notetaker", "Google Meet");
    stage.invite("notetaker@read.ai", 45min);
    stage.run("/usr/bin/granola");
}

void showClear(Stage& stage) {
    stage.permit(true, true);
}

void showHistory(Stage& stage) {
    showClear(stage);
    for (const char* name : {"Otter.ai", "Fireflies.ai", "Granola", "Zoom AI Companion"})
        stage.state.detectionLog.add({.botName = name,
                                      .category = "transcription",
                                      .confidence = 90,
                                      .method = "participantList",
                                      .detectedAt = stage.computer.loop.now(),
                                      .source = "participant"});
    stage.state.sources.meeting.onSightLost("Google Meet is in a background tab of Chromium: who "
                                            "joins it is not seen. Give it a window "
                                            "of its own.");
}

void failCalendar(Stage& stage) {
    stage.computer.calendars.failed = {{"Work", "it does not answer"}};
    stage.look();
}

/// A window that is being read, and never comes to its end.
void openUnreadMeeting(Stage& stage) {
    stage.computer.applications.running = {{"us.zoom.xos", "Zoom", std::nullopt, 500}};
    stage.computer.accessibility.applications[500].isAnswering = false;
    stage.look();
}

void openTab(Stage& stage, int tab) {
    stage.ui.openSettings();
    stage.ui.window(settings)->setProperty("currentTab", tab);
}

void openOnboarding(Stage& stage) {
    stage.delegate.showOnboardingWindow();
    stage.settle();
}

OnboardingBridge& bridge(Stage& stage) {
    return *stage.ui.window(onboarding)->property("bridge").value<OnboardingBridge*>();
}

void onboardingStep(Stage& stage, int steps) {
    stage.permit(false, false);
    openOnboarding(stage);
    for (int step = 0; step < steps; ++step)
        bridge(stage).next();
    stage.settle();
}

void hostile(Stage& stage) {
    showClear(stage);
    stage.showInMeeting(std::string(300, 'W') + " notetaker");
    stage.showInMeeting("روبوت تدوين الملاحظات notetaker", "Webex");
    stage.showInMeeting("<b>bold</b>\n🤖🎙️ notetaker");
    stage.showInMeeting("Ünïcødé \xE2\x80\xAE reversed notetaker");
}

const std::vector<Scene> scenes{
    {"popover-clear", popover,
     [](Stage& stage) {
         showClear(stage);
         stage.ui.openPopover();
     }},
    {"popover-off", popover,
     [](Stage& stage) {
         showClear(stage);
         stage.state.stopMonitoring();
         stage.ui.openPopover();
     }},
    {"popover-limited", popover,
     [](Stage& stage) {
         stage.permit(true, true);
         failCalendar(stage);
         stage.ui.openPopover();
     }},
    {"popover-unread", popover,
     [](Stage& stage) {
         stage.permit(true, true);
         openUnreadMeeting(stage);
         stage.ui.openPopover();
     }},
    {"popover-detections-limited", popover,
     [](Stage& stage) {
         showEverything(stage);
         failCalendar(stage);
         stage.ui.openPopover();
     }},
    {"popover-detections-old", popover,
     [](Stage& stage) {
         showEverything(stage);
         stage.state.stopMonitoring();
         stage.computer.loop.advance(5min);
         stage.ui.openPopover();
     }},
    {"popover-detections", popover,
     [](Stage& stage) {
         showEverything(stage);
         stage.ui.openPopover();
     }},
    {"popover-permissions", popover,
     [](Stage& stage) {
         stage.permit(false, false);
         stage.ui.openPopover();
     }},
    {"popover-accounts", popover,
     [](Stage& stage) {
         stage.permit(true, true, false);
         stage.computer.systemSettings.hasPanes = false;
         stage.ui.openPopover();
         stage.ui.window(popover)
             ->property("bridge")
             .value<PopoverBridge*>()
             ->openInternetAccounts();
     }},
    {"popover-objection-toast", popover,
     [](Stage& stage) {
         showEverything(stage);
         stage.ui.openPopover();
         stage.state.objectToFirst();
     }},
    {"popover-objection-toast-unspoken", popover,
     [](Stage& stage) {
         showEverything(stage);
         stage.computer.speech.become("No speech service is installed.");
         stage.ui.openPopover();
         stage.state.objectToFirst();
     }},
    {"popover-share-toast", popover,
     [](Stage& stage) {
         showClear(stage);
         stage.ui.openPopover();
         stage.ui.window(popover)->property("bridge").value<PopoverBridge*>()->share();
     }},
    {"popover-scanning", popover,
     [](Stage& stage) {
         showClear(stage);
         stage.ui.openPopover();
         stage.ui.window(popover)->property("bridge").value<PopoverBridge*>()->refresh();
     }},
    {"popover-hostile", popover,
     [](Stage& stage) {
         hostile(stage);
         stage.ui.openPopover();
     }},
    {"popover-many", popover,
     [](Stage& stage) {
         showEverything(stage);
         for (int each = 0; each < 200; ++each)
             stage.showInMeeting("Acme " + std::to_string(each) + " Notetaker");
         stage.ui.openPopover();
     }},
    {"history", popover,
     [](Stage& stage) {
         showHistory(stage);
         stage.ui.openHistory();
     }},
    {"history-empty", popover,
     [](Stage& stage) {
         showClear(stage);
         stage.ui.openHistory();
     }},
    {"alert", "BotAlertBanner",
     [](Stage& stage) {
         stage.state.alertPanel.show({"Otter.ai", "Zoom", "Transcription"});
     }},
    {"alert-long", "BotAlertBanner",
     [](Stage& stage) {
         stage.state.alertPanel.show(
             {std::string(300, 'M'), "Microsoft Teams", "Sales Intelligence"});
     }},
    {"calendar-window", "CalendarPermissionHelper",
     [](Stage& stage) {
         stage.permit(false, true);
         stage.state.showCalendarPermissionWindow();
     }},
    {"calendar-window-granted", "CalendarPermissionHelper",
     [](Stage& stage) {
         stage.permit(true, true);
         stage.state.showCalendarPermissionWindow();
     }},
    {"calendar-window-missing", "CalendarPermissionHelper",
     [](Stage& stage) {
         stage.computer.calendars.status = CalendarAuthorization::restricted;
         stage.state.permissions.refresh();
         stage.state.showCalendarPermissionWindow();
     }},
    {"calendar-consent", "CalendarConsent",
     [](Stage& stage) { stage.consent.request([](const CalendarStore::AccessAnswer&) {}); }},
    {"onboarding-1-welcome", onboarding, [](Stage& stage) { onboardingStep(stage, 0); }},
    {"onboarding-2-pledge", onboarding, [](Stage& stage) { onboardingStep(stage, 1); }},
    {"onboarding-3-accessibility", onboarding, [](Stage& stage) { onboardingStep(stage, 2); }},
    {"onboarding-3-accessibility-help", onboarding,
     [](Stage& stage) {
         stage.computer.accessibility.isOn = false;
         stage.computer.accessibility.grantsTrust = false;
         onboardingStep(stage, 2);
         bridge(stage).requestAccessibility();
     }},
    {"onboarding-3-accessibility-granted", onboarding,
     [](Stage& stage) {
         onboardingStep(stage, 2);
         stage.permit(false, true);
     }},
    {"onboarding-4-calendar", onboarding, [](Stage& stage) { onboardingStep(stage, 3); }},
    {"onboarding-4-calendar-missing", onboarding,
     [](Stage& stage) {
         onboardingStep(stage, 3);
         stage.computer.calendars.status = CalendarAuthorization::restricted;
         stage.state.permissions.refresh();
     }},
    {"onboarding-4-calendar-granted", onboarding,
     [](Stage& stage) {
         using Type = CalendarSourceType;
         stage.computer.calendars.accounts = {
             {"ann@gmail.com", Type::calDAV, CalendarProvider::google},
             {"Work (Office 365)", Type::exchange, CalendarProvider::exchange},
             {"Holidays", Type::subscribed}};
         onboardingStep(stage, 3);
         bridge(stage).requestCalendarAccess();
     }},
    {"onboarding-5-scanning", onboarding, [](Stage& stage) { onboardingStep(stage, 4); }},
    {"onboarding-5-clear", onboarding,
     [](Stage& stage) {
         stage.permit(true, true);
         openOnboarding(stage);
         bridge(stage).next();
         bridge(stage).next();
         stage.computer.loop.advance(2s);
     }},
    {"onboarding-5-limited", onboarding,
     [](Stage& stage) {
         onboardingStep(stage, 4);
         stage.computer.loop.advance(2s);
     }},
    {"onboarding-5-unread", onboarding,
     [](Stage& stage) {
         stage.permit(true, true);
         openOnboarding(stage);
         openUnreadMeeting(stage);
         bridge(stage).next();
         bridge(stage).next();
         stage.computer.loop.advance(16s);
     }},
    {"onboarding-5-found", onboarding,
     [](Stage& stage) {
         onboardingStep(stage, 4);
         stage.computer.loop.advance(2s);
         showEverything(stage);
     }},
    {"settings-general", settings,
     [](Stage& stage) {
         openTab(stage, 0);
         stage.updateService.answer = {.kind = UpdateAnswer::Kind::upToDate};
         stage.updates.checkNow();
     }},
    {"settings-detection", settings,
     [](Stage& stage) {
         stage.permit(true, false, false);
         stage.state.allow("otter");
         stage.state.allow("Fireflies.ai");
         openTab(stage, 1);
     }},
    {"settings-detection-address", settings,
     [](Stage& stage) {
         openTab(stage, 1);
         auto* const bridge =
             stage.ui.window(settings)->property("bridge").value<SettingsBridge*>();
         bridge->setMyAddresses("ann@example.com, botond@firm.example");
         bridge->setMyAddresses("botond");
     }},
    {"settings-objection", settings,
     [](Stage& stage) {
         stage.showInMeeting("Otter.ai Notetaker");
         stage.state.objectToFirst();
         openTab(stage, 2);
     }},
    {"settings-objection-empty", settings, [](Stage& stage) { openTab(stage, 2); }},
    {"settings-about", settings, [](Stage& stage) { openTab(stage, 3); }},
};

/// Lets the window paint, and its motions come to rest.
void wait(Stage& stage, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        stage.settle();
        QThread::msleep(5);
    }
}

bool save(const Scene& scene, const QDir& folder, int points) {
    Stage stage;
    scene.set(stage);
    stage.settle();
    auto* const window = stage.ui.window(scene.view);
    if (!window)
        return false;
    wait(stage, 700);
    const QString ratio = QString::number(window->devicePixelRatio());
    const QString font = points == usualPoints ? "" : "-font" + QString::number(points);
    const QString path = folder.filePath(scene.name + font + "@" + ratio + "x.png");
    return window->grabWindow().save(path);
}

/// The icon of each verdict in a light panel and in a dark one, in the usual sizes and a large one.
bool saveIcons(const QDir& folder) {
    constexpr Verdict verdicts[] = {Verdict::off, Verdict::scanning, Verdict::notFullyWatching,
                                    Verdict::clear, Verdict::found};
    constexpr int iconSizes[] = {16, 22, 32, 96};
    constexpr int row = 104;
    constexpr int width = 220;
    QImage picture(2 * width, row * static_cast<int>(std::size(verdicts)), QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.fillRect(0, 0, width, picture.height(), QColor(0xF0, 0xF0, 0xF0));
    painter.fillRect(width, 0, width, picture.height(), QColor(0x24, 0x24, 0x24));
    int top = 0;
    for (const auto verdict : verdicts) {
        for (int left : {0, width}) {
            for (const int size : iconSizes) {
                left += 10;
                painter.drawImage(left, top + (row - size) / 2, menuBarImage(verdict, size));
                left += size;
            }
        }
        top += row;
    }
    return picture.save(folder.filePath("tray-icons.png"));
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationVersion("0.1.0");
    const QStringList arguments = QApplication::arguments();
    const QString only = arguments.value(2, "all");
    const int points = arguments.value(3, QString::number(usualPoints)).toInt();
    if (arguments.size() < 2 || !QDir().mkpath(arguments[1])) {
        std::cerr << "Usage: quorva-screenshots FOLDER [SCENE [POINTS]]\n";
        return 2;
    }
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
    bool isComplete = QString("tray-icons").startsWith(only) || only == "all"
                          ? saveIcons(QDir(arguments[1]))
                          : true;
    for (const Scene& scene : scenes) {
        if (only != "all" && !QString(scene.name).startsWith(only))
            continue;
        const bool isSaved = save(scene, QDir(arguments[1]), points);
        std::cout << scene.name << (isSaved ? "" : ": failed") << '\n';
        isComplete = isComplete && isSaved;
    }
    return isComplete ? 0 : 1;
}
