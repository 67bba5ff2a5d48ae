// What the popover and the settings show of the application state, and how they change it.
#include "support/Eventually.h"
#include "support/Stage.h"
#include "support/TemporaryFolder.h"
#include "ui/bridges/EvidenceExport.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

std::string text(const RowModel& model, int row, const char* role) {
    return model.data(model.index(row), model.roleNames().key(role)).toString().toStdString();
}

class PopoverBridgeTest : public testing::Test {
protected:
    Stage stage;
    PopoverBridge popover{stage.state, stage.computer.loop};
};

TEST_F(PopoverBridgeTest, rowsFollowTheStateAndSayWhatMatched) {
    stage.showInMeeting("Otter.ai Notetaker");
    stage.invite("notetaker@read.ai", 45min);
    EXPECT_EQ(popover.pillText(), "2 Bots Detected");
    EXPECT_EQ(text(*popover.participants(), 0, "subtitle"), "Transcription");
    EXPECT_THAT(text(*popover.participants(), 0, "note"), HasSubstr("Otter.ai Notetaker"));
    EXPECT_EQ(text(*popover.upcoming(), 0, "badge"), "45m");
    EXPECT_THAT(text(*popover.upcoming(), 0, "note"), HasSubstr("notetaker@read.ai"));
    stage.computer.loop.advance(0s);
    popover.setVisible(true); // times are updated while it is visible
    stage.computer.loop.advance(60s);
    EXPECT_EQ(text(*popover.upcoming(), 0, "badge"), "44m");
}

TEST_F(PopoverBridgeTest, rowsSayWhenTheyWereLastSeen) {
    stage.showInMeeting("This meeting is being recorded");
    stage.showInMeeting("Otter.ai Notetaker");
    popover.setVisible(true);
    stage.computer.loop.advance(30s);
    EXPECT_EQ(text(*popover.participants(), 0, "badge"), "");
    EXPECT_EQ(text(*popover.indicators(), 0, "badge"), "LIVE");
    stage.state.stopMonitoring(); // the rows stay, and nobody looks at them again
    stage.computer.loop.advance(70s);
    EXPECT_EQ(text(*popover.participants(), 0, "badge"), "last seen 1 min. ago");
    EXPECT_EQ(text(*popover.indicators(), 0, "badge"), "last seen 1 min. ago");
    stage.computer.loop.advance(60s);
    EXPECT_EQ(text(*popover.participants(), 0, "spoken"),
              "Otter.ai, Transcription, Zoom, last seen 2 min. ago");
    EXPECT_EQ(text(*popover.indicators(), 0, "spoken"),
              "Recording Active on Zoom, last seen 2 min. ago");
}

TEST_F(PopoverBridgeTest, thePillSaysOffWhateverTheListsHold) {
    stage.computer.startOtter();
    popover.refresh();
    stage.settle();
    EXPECT_EQ(popover.pillLabel(), "1 bots detected");
    popover.toggleMonitoring();
    stage.settle();
    EXPECT_EQ(popover.onMac()->count(), 1);
    EXPECT_EQ(popover.pillLabel(), "Monitoring Off");
    EXPECT_EQ(popover.pillText(), "Monitoring Off");
    EXPECT_THAT(popover.uncovered().toStdString(), HasSubstr("nothing is being looked at"));
}

TEST_F(PopoverBridgeTest, theHistorySaysWhatWasNotSeen) {
    stage.state.sources.meeting.onSightLost("Google Meet is in a background tab.");
    stage.state.showHistory();
    stage.settle();
    ASSERT_EQ(popover.history()->count(), 1);
    EXPECT_EQ(text(*popover.history(), 0, "title"), "Not seen");
    EXPECT_EQ(text(*popover.history(), 0, "subtitle"), "Google Meet is in a background tab.");
    EXPECT_EQ(popover.threatCount(), 0);
}

TEST_F(PopoverBridgeTest, anObjectionNamesTheRowThatItIsTo) {
    stage.showInMeeting("Otter.ai Notetaker");
    stage.showInMeeting("Fathom Notetaker", "Google Meet");
    stage.invite("notetaker@read.ai", 45min);
    popover.objectToParticipant("Google Meet-fathom notetaker");
    popover.objectToCalendar("read-cal-notetaker@read.ai");
    popover.objectToParticipant("gone"); // the bot left while the button was pressed
    const auto& log = stage.state.objections.objectionLog.records.get();
    ASSERT_EQ(log.size(), 2U);
    EXPECT_EQ(log[1].botName, "Fathom");
    EXPECT_EQ(log[1].meetingContext, "Google Meet");
    EXPECT_EQ(log[1].source, DetectionSource::participant);
    EXPECT_EQ(log[0].meetingContext, "Read.ai");
    EXPECT_EQ(log[0].source, DetectionSource::calendar);
    stage.settle();
    EXPECT_TRUE(popover.showsObjectionToast());
}

TEST_F(PopoverBridgeTest, aDismissedInvitationIsGoneForGood) {
    stage.computer.inviteOtter("event", 1h);
    popover.refresh();
    stage.settle();
    ASSERT_EQ(popover.upcoming()->count(), 1);
    popover.dismiss(QString::fromStdString(text(*popover.upcoming(), 0, "rowId")));
    stage.settle();
    EXPECT_EQ(popover.upcoming()->count(), 0);
    popover.refresh();
    stage.settle();
    EXPECT_EQ(popover.upcoming()->count(), 0);
}

TEST_F(PopoverBridgeTest, anAllowedProductVanishesUntilItIsRemovedInTheSettings) {
    SettingsBridge settings{stage.state, stage.updates, stage.computer.loop};
    stage.computer.startOtter();
    popover.refresh();
    stage.settle();
    ASSERT_EQ(popover.onMac()->count(), 1);
    popover.allow(QString::fromStdString(text(*popover.onMac(), 0, "key")));
    stage.settle();
    EXPECT_EQ(popover.onMac()->count(), 0);
    ASSERT_EQ(settings.allowed()->count(), 1);
    settings.removeAllowed(QString::fromStdString(text(*settings.allowed(), 0, "key")));
    stage.settle();
    EXPECT_EQ(popover.onMac()->count(), 1);
    EXPECT_EQ(settings.allowed()->count(), 0);
}

TEST_F(PopoverBridgeTest, theShareToastStaysTwoAndAHalfSecondsAfterTheLastShare) {
    popover.share();
    stage.computer.loop.advance(2s);
    popover.share();
    stage.computer.loop.advance(2s);
    EXPECT_TRUE(popover.showsShareToast());
    stage.computer.loop.advance(600ms);
    EXPECT_FALSE(popover.showsShareToast());
    EXPECT_FALSE(stage.computer.clipboard.text.empty());
}

TEST_F(PopoverBridgeTest, permissionsAreAskedForOnlyOfDetectorsThatAreOn) {
    stage.permit(false, false);
    EXPECT_TRUE(popover.needsCalendarAccess());
    EXPECT_TRUE(popover.needsAccessibility());
    stage.state.toggleCalendarMonitor();
    stage.state.toggleParticipantMonitor();
    EXPECT_FALSE(popover.needsCalendarAccess());
    EXPECT_FALSE(popover.needsAccessibility());
}

TEST_F(PopoverBridgeTest, whereTheDesktopHasNoPaneItIsSaidWhatToDo) {
    popover.openInternetAccounts();
    EXPECT_EQ(popover.accountsHelp(), "");
    stage.computer.systemSettings.hasPanes = false;
    popover.openInternetAccounts();
    EXPECT_THAT(popover.accountsHelp().toStdString(), HasSubstr("calendar application"));
    stage.computer.accessibility.isOn = false;
    popover.openAccessibilitySettings(); // no pane: switches it on itself
    EXPECT_TRUE(stage.computer.accessibility.isOn);
}

TEST_F(PopoverBridgeTest, refreshStartsMonitoringAndShowsThatItScans) {
    stage.state.stopMonitoring();
    popover.refresh();
    EXPECT_TRUE(stage.state.isMonitoring);
    EXPECT_TRUE(popover.isScanning());
    stage.computer.loop.advance(1s);
    EXPECT_FALSE(popover.isScanning());
    stage.computer.calendars.answersAtOnce = false;
    popover.refresh();
    stage.computer.loop.advance(2s);
    EXPECT_TRUE(popover.isScanning()); // a calendar has not answered yet
    stage.computer.calendars.answerFetch();
    EXPECT_FALSE(popover.isScanning());
}

TEST(SettingsBridge, everySettingIsStoredAtOnce) {
    Stage stage;
    SettingsBridge settings{stage.state, stage.updates, stage.computer.loop};
    settings.setLaunchAtLogin(true);
    settings.setShowNotifications(false);
    settings.setAutoStart(false);
    settings.setCalendarEnabled(false);
    settings.setParticipantEnabled(false);
    settings.setChecksAutomatically(true);
    EXPECT_EQ(stage.computer.loginItem.state, LoginItemStatus::enabled);
    EXPECT_EQ(stage.computer.loginItem.changes, 1) << "the other settings leave it alone";
    const AppState later(stage.computer.services);
    stage.computer.loop.runPosted();
    EXPECT_TRUE(later.settings.launchAtLogin);
    EXPECT_FALSE(later.settings.showNotifications);
    EXPECT_FALSE(later.settings.autoStartMonitoring);
    EXPECT_FALSE(later.settings.calendarMonitorEnabled);
    EXPECT_FALSE(later.settings.participantMonitorEnabled);
    EXPECT_TRUE(stage.updates.checksAutomatically);
}

TEST(SettingsBridge, theUsersOwnAddressesAreTakenTogetherOrNotAtAll) {
    Stage stage;
    SettingsBridge settings{stage.state, stage.updates, stage.computer.loop};
    const auto stored = [&] {
        return stage.computer.preferences.read<std::vector<std::string>>("myAddresses").value;
    };
    const auto fetches = stage.computer.calendars.fetches.size();
    settings.setMyAddresses(" ann@example.com;Botond@firm.example , ");
    EXPECT_EQ(stored(), (std::vector<std::string>{"ann@example.com", "Botond@firm.example"}));
    EXPECT_EQ(settings.myAddresses(), "ann@example.com, Botond@firm.example");
    EXPECT_EQ(settings.addressesHelp(), "");
    EXPECT_EQ(stage.computer.calendars.fetches.size(), fetches + 1) << "they count at once";

    settings.setMyAddresses("ann@example.com, bo");
    EXPECT_EQ(settings.addressesHelp(), "bo is not an e-mail address.");
    settings.setMyAddresses(QString("a@b,").repeated(51));
    EXPECT_THAT(settings.addressesHelp().toStdString(), HasSubstr("50"));
    EXPECT_EQ(stored()->size(), 2U);
    EXPECT_EQ(AppState(stage.computer.services).settings.myAddresses->size(), 2U);
    settings.setMyAddresses("");
    EXPECT_EQ(settings.addressesHelp(), "");
    EXPECT_EQ(stored(), std::vector<std::string>{});
}

TEST(SettingsBridge, theTemplateChosenIsTheOneUsed) {
    Stage stage;
    SettingsBridge settings{stage.state, stage.updates, stage.computer.loop};
    const int last = settings.templates()->count() - 1;
    ASSERT_NE(settings.selectedTemplate(), last);
    settings.selectTemplate(last);
    settings.selectTemplate(last + 1); // no such template
    EXPECT_EQ(settings.selectedTemplate(), last);
    stage.state.objectToFirst();
    stage.settle();
    ASSERT_EQ(settings.evidence()->count(), 1);
    EXPECT_EQ(text(*settings.evidence(), 0, "title"), text(*settings.templates(), last, "title"));
    EXPECT_EQ(settings.preview().toStdString(), stage.computer.clipboard.text);
}

TEST(SettingsBridge, theEvidenceGoesToTheClipboardOrToAFile) {
    const TemporaryFolder folder;
    Stage stage;
    SettingsBridge settings{stage.state, stage.updates, stage.computer.loop};
    stage.state.objectToFirst();
    const auto& records = stage.state.objections.objectionLog.records.get();
    settings.copyEvidence();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), evidenceAsCsv(records));

    settings.exportEvidence();
    auto* const dialog = [] {
        for (auto* const widget : QApplication::topLevelWidgets())
            if (auto* const found = qobject_cast<QFileDialog*>(widget))
                return found;
        return static_cast<QFileDialog*>(nullptr);
    }();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(dialog->isVisible());
    emit dialog->filterSelected(dialog->nameFilters().last());
    dialog->setDirectory(QString::fromStdString(folder.path.string()));
    dialog->selectFile("log");
    ASSERT_TRUE(QMetaObject::invokeMethod(dialog, "accept"));
    const auto isToldOf = [&] {
        stage.settle();
        return settings.exportText().startsWith("Exported to ");
    };
    ASSERT_TRUE(eventually(stage.computer.loop, isToldOf));
    EXPECT_EQ(folder.read("log.json"), evidenceAsJson(records));
}

} // namespace
} // namespace quorva
