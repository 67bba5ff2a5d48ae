// The windows: they open and close when they should, nothing in them is broken, and everyone can
// read and operate them.
#include "support/Stage.h"
#include "ui/ItemWalk.h"
#include "ui/QtEnvironment.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QTest>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::Gt;

constexpr char popoverView[] = "MenuBarView";
constexpr char onboardingView[] = "OnboardingView";
constexpr double enoughContrast = 4.5; ///< WCAG 2.1, 1.4.3

class UserInterfaceTest : public testing::Test {
protected:
    ~UserInterfaceTest() override { EXPECT_EQ(takeWarnings(), ""); }

    [[nodiscard]] bool isShown(const char* view) {
        stage.settle();
        const auto* const window = stage.ui.window(view);
        return window && window->isVisible();
    }
    void detectEverything() {
        stage.showInMeeting("This meeting is being recorded");
        stage.showInMeeting("Otter.ai Notetaker");
        stage.invite("notetaker@read.ai", 45min);
        stage.run("/usr/bin/granola");
    }
    /// Opens every window in each of its steps or tabs, one after the other, and inspects it.
    void lookAtEveryView(const std::function<void(QQuickWindow&)>& look) {
        const auto lookAt = [&](const char* view) {
            ASSERT_TRUE(isShown(view)) << view;
            look(*stage.ui.window(view));
        };
        stage.permit(false, false);
        stage.ui.openPopover();
        lookAt(popoverView);
        stage.permit(true, true);
        detectEverything();
        stage.ui.openPopover(); // the alert may have taken the keyboard from it
        lookAt(popoverView);
        stage.ui.openHistory();
        lookAt(popoverView);
        stage.state.showCalendarPermissionWindow();
        lookAt("CalendarPermissionHelper");
        stage.consent.request([](const CalendarStore::AccessAnswer&) {});
        lookAt("CalendarConsent");
        stage.ui.openSettings();
        for (int tab = 0; tab < 4; ++tab) {
            ASSERT_TRUE(isShown("SettingsView"));
            stage.ui.window("SettingsView")->setProperty("currentTab", tab);
            lookAt("SettingsView");
        }
        stage.permit(false, false);
        stage.delegate.showOnboardingWindow();
        for (int step = 0; step < 5; ++step) {
            lookAt(onboardingView);
            bridge()->next();
        }
        stage.computer.loop.advance(2s);
        lookAt(onboardingView);
    }
    OnboardingBridge* bridge() {
        return stage.ui.window(onboardingView)->property("bridge").value<OnboardingBridge*>();
    }

    Stage stage;
};

TEST_F(UserInterfaceTest, nothingOfQtQuickIsThereBeforeTheFirstWindowAndAMinuteAfterTheLast) {
    EXPECT_FALSE(stage.ui.isLoaded());
    stage.ui.openPopover();
    ASSERT_TRUE(isShown(popoverView));
    stage.ui.openSettings();
    stage.ui.closePopover();
    stage.computer.loop.advance(300s);
    EXPECT_TRUE(stage.ui.isLoaded());
    stage.ui.window("SettingsView")->close();
    stage.settle();
    stage.computer.loop.advance(59s);
    stage.ui.openPopover(); // opened again in time, it is the same window
    stage.ui.closePopover();
    stage.computer.loop.advance(59s);
    EXPECT_TRUE(stage.ui.isLoaded());
    stage.computer.loop.advance(2s);
    EXPECT_FALSE(stage.ui.isLoaded());
    stage.ui.openPopover();
    EXPECT_TRUE(isShown(popoverView));
}

TEST_F(UserInterfaceTest, theAlertPanelFollowsTheAlertAndNeverTakesTheFocus) {
    stage.state.alertPanel.show({"Otter.ai", "Zoom", "Transcription"});
    ASSERT_TRUE(isShown("BotAlertBanner"));
    auto* const panel = stage.ui.window("BotAlertBanner");
    EXPECT_TRUE(panel->flags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_THAT(textsOf(*panel), testing::Contains("Bot Detected in Zoom"));
    stage.state.alertPanel.show({"Fathom", "Slack", "Sales Intelligence"});
    stage.settle();
    EXPECT_THAT(textsOf(*panel), testing::Contains("Bot Detected in Slack"));
    stage.computer.loop.advance(8s);
    EXPECT_FALSE(isShown("BotAlertBanner"));
}

TEST_F(UserInterfaceTest, closingAWindowIsAnAnswer) {
    stage.computer.calendars.answer.granted = false;
    std::optional<bool> answer;
    stage.consent.request(
        [&](const CalendarStore::AccessAnswer& given) { answer = given.granted; });
    ASSERT_TRUE(isShown("CalendarConsent"));
    stage.ui.window("CalendarConsent")->close();
    EXPECT_EQ(answer, false);

    stage.state.showCalendarPermissionWindow();
    ASSERT_TRUE(isShown("CalendarPermissionHelper"));
    stage.ui.window("CalendarPermissionHelper")->close();
    EXPECT_FALSE(stage.state.calendarWindow);

    stage.delegate.showOnboardingWindow();
    ASSERT_TRUE(isShown(onboardingView));
    stage.ui.window(onboardingView)->close();
    EXPECT_FALSE(stage.delegate.onboardingWindow);
    EXPECT_FALSE(stage.state.settings.hasCompletedOnboarding);
    stage.settle();
    stage.delegate.showOnboardingWindow();
    EXPECT_TRUE(isShown(onboardingView));
}

TEST_F(UserInterfaceTest, theFirstRunEndsWithItsLastButton) {
    stage.delegate.showOnboardingWindow();
    ASSERT_TRUE(isShown(onboardingView));
    for (int step = 0; step < 5; ++step)
        bridge()->next();
    stage.computer.loop.advance(2s);
    stage.settle();
    press(*stage.ui.window(onboardingView), "Start Using Quorva");
    EXPECT_FALSE(isShown(onboardingView));
    EXPECT_TRUE(stage.state.settings.hasCompletedOnboarding);
}

TEST_F(UserInterfaceTest, theHistoryOpensWithThePopoverAndGoesWithIt) {
    stage.state.showHistory();
    ASSERT_TRUE(isShown(popoverView));
    EXPECT_THAT(textsOf(*stage.ui.window(popoverView)), testing::Contains("No detections yet"));
    stage.ui.closePopover();
    stage.settle();
    EXPECT_FALSE(stage.state.showingLogSheet);
}

TEST_F(UserInterfaceTest, aHistoryThatWasClosedStaysSoWhateverChangesWhileItFades) {
    stage.ui.openHistory();
    ASSERT_TRUE(isShown(popoverView));
    auto& popover = *stage.ui.window(popoverView);
    press(popover, "Done");
    detectEverything();
    const auto hasGone = [&] {
        stage.settle();
        return !stage.state.showingLogSheet && !controlNamed(popover, "Done");
    };
    EXPECT_TRUE(QTest::qWaitFor(hasGone));
}

TEST_F(UserInterfaceTest, escapeClosesThePopover) {
    stage.ui.openPopover();
    ASSERT_TRUE(isShown(popoverView));
    QTest::keyClick(stage.ui.window(popoverView), Qt::Key_Escape);
    EXPECT_FALSE(isShown(popoverView));
}

TEST_F(UserInterfaceTest, aRowThatGoesWhileItsButtonIsPressedTakesThePressWithIt) {
    detectEverything();
    stage.ui.openPopover();
    ASSERT_TRUE(isShown(popoverView));
    auto& popover = *stage.ui.window(popoverView);
    auto* const button = controlNamed(popover, "Object to Otter.ai");
    ASSERT_TRUE(button);
    const QPoint place = button->mapToScene({button->width() / 2, button->height() / 2}).toPoint();
    QTest::mousePress(&popover, Qt::LeftButton, {}, place);
    stage.state.allow("Otter.ai");
    stage.settle();
    QTest::mouseRelease(&popover, Qt::LeftButton, {}, place);
    stage.settle();
    EXPECT_EQ(stage.state.objections.objectionLog.records->size(), 0U);
    EXPECT_FALSE(controlNamed(popover, "Object to Otter.ai"));
    press(popover, "Object to Read.ai");
    EXPECT_EQ(stage.state.objections.objectionLog.records->size(), 1U);
}

TEST_F(UserInterfaceTest, twoHundredDetectionsAndHostileNamesAreShown) {
    stage.showInMeeting(std::string(300, 'W') + " Notetaker");
    stage.showInMeeting("<b>a</b>\n\xE2\x80\xAE"
                        "b Notetaker");
    for (int each = 0; each < 200; ++each)
        stage.showInMeeting("Acme " + std::to_string(each) + " Notetaker");
    stage.ui.openPopover();
    ASSERT_TRUE(isShown(popoverView));
    const auto texts = textsOf(*stage.ui.window(popoverView));
    EXPECT_THAT(texts, testing::IsSupersetOf({"<b>a</b> b Notetaker", "Acme 199 Notetaker"}));
    EXPECT_THAT(texts.size(), Gt(400U));
}

TEST_F(UserInterfaceTest, everyViewLoadsAndEveryControlInItHasAName) {
    lookAtEveryView([](QQuickWindow& window) {
        for (auto* const control : controlsOf(window)) {
            auto* const accessible = QAccessible::queryAccessibleInterface(control);
            ASSERT_TRUE(accessible);
            EXPECT_NE(accessible->text(QAccessible::Name), QString())
                << window.title().toStdString() << ": " << control->metaObject()->className();
        }
    });
}

TEST_F(UserInterfaceTest, aScreenReaderCanOperateWhatItIsToldOf) {
    stage.ui.openSettings();
    ASSERT_TRUE(isShown("SettingsView"));
    auto& settings = *stage.ui.window("SettingsView");
    press(settings, "Show notifications");
    EXPECT_FALSE(stage.state.settings.showNotifications);
    press(settings, "Detection");
    press(settings, "Enable calendar scanning");
    EXPECT_FALSE(stage.state.settings.calendarMonitorEnabled);
    press(settings, "Objection");
    press(settings, "Brief Statement");
    EXPECT_EQ(stage.state.objections.selectedTemplate.get(), ObjectionTemplate::brief);
    press(settings, "About");
    press(settings, "Website");
    EXPECT_EQ(stage.computer.systemSettings.addresses.size(), 1U);
}

TEST_F(UserInterfaceTest, whatIsTypedForAnAddressStaysUntilItIsRight) {
    stage.ui.openSettings();
    stage.settle();
    auto& settings = *stage.ui.window("SettingsView");
    press(settings, "Detection");
    stage.settle();
    auto* const field = controlNamed(settings, "Your e-mail addresses");
    ASSERT_NE(field, nullptr);
    settings.requestActivate();
    field->forceActiveFocus();
    const auto type = [&](const char* text) {
        QTest::qWait(0);
        for (const auto* key = text; *key; ++key)
            QTest::keyClick(&settings, *key);
        QTest::keyClick(&settings, Qt::Key_Return);
        stage.settle();
    };
    type("bo");
    EXPECT_EQ(field->property("text").toString(), "bo");
    EXPECT_THAT(textsOf(settings), testing::Contains("bo is not an e-mail address."));
    EXPECT_THAT(*stage.state.settings.myAddresses, testing::IsEmpty());
    type("@firm.example;");
    EXPECT_EQ(field->property("text").toString(), "bo@firm.example");
    EXPECT_THAT(*stage.state.settings.myAddresses, testing::ElementsAre("bo@firm.example"));
}

TEST_F(UserInterfaceTest, theKeyboardGoesThroughThePopoverAsItIsRead) {
    stage.permit(true, true);
    detectEverything();
    stage.ui.openPopover();
    ASSERT_TRUE(isShown(popoverView));
    auto& popover = *stage.ui.window(popoverView);
    std::vector<std::string> names;
    for (int each = 0; each < 13; ++each) {
        QTest::keyClick(&popover, Qt::Key_Tab);
        auto* const at = QAccessible::queryAccessibleInterface(popover.activeFocusItem());
        names.push_back(at->text(QAccessible::Name).toStdString());
    }
    EXPECT_THAT(names,
                testing::ElementsAre(
                    "Monitoring toggle", "Object to Otter.ai", "More for Otter.ai",
                    "Object to Read.ai", "Dismiss Read.ai", "More for Read.ai", "More for Granola",
                    "Refresh all scans", "View detection history", "Object to AI recording",
                    "Open settings", "Share Quorva with a colleague", "Quit Quorva"));
}

TEST_F(UserInterfaceTest, everyTextStandsOutFromWhatIsBehindIt) {
    lookAtEveryView([](QQuickWindow& window) {
        for (const auto& [text, contrast] : contrastsOf(window))
            EXPECT_GE(contrast, enoughContrast) << window.title().toStdString() << ": " << text;
    });
}

} // namespace
} // namespace quorva
