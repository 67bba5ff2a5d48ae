#include "core/AppStateTest.h"
#include "core/ShareText.h"

namespace quorva {
namespace {

using ObjectionsTest = AppStateTest;

TEST(ObjectionTexts, areOfTheLengthTheyWereWrittenIn) {
    std::vector<std::size_t> written;
    std::vector<std::size_t> spoken;
    for (const auto& [value, raw] : namedCases<ObjectionTemplate>) {
        written.push_back(objectionText(value).writtenStatement.size());
        spoken.push_back(objectionText(value).spokenStatement.size());
    }
    EXPECT_THAT(written, ElementsAre(237U, 237U, 216U, 66U));
    EXPECT_THAT(spoken, ElementsAre(141U, 162U, 125U, 65U));
}

TEST_F(ObjectionsTest, copiesSpeaksAndRecords) {
    auto& app = start();
    EXPECT_TRUE(app.fileObjection(
        {.botName = "Otter.ai", .meetingContext = "Zoom", .source = DetectionSource::participant}));
    EXPECT_THAT(computer.clipboard.text, testing::StartsWith("I do not consent to AI recording or "
                                                             "transcription of this conversation "
                                                             "pursuant to California"));
    const auto& said = computer.speech.spoken.at(0);
    EXPECT_THAT(said.text, testing::StartsWith("Hey everyone"));
    EXPECT_EQ(said.rate, 0.48);
    EXPECT_EQ(said.volume, 0.85);
    EXPECT_EQ(computer.speech.voicesUsed.at(0), "Ben"); // English, the first of equal quality
    EXPECT_TRUE(app.objections.showingObjectionToast);
    computer.loop.advance(2.4s);
    EXPECT_TRUE(app.objections.showingObjectionToast);
    computer.loop.advance(0.2s);
    EXPECT_FALSE(app.objections.showingObjectionToast);

    app.objections.selectTemplate(ObjectionTemplate::brief);
    app.fileObjection({});
    EXPECT_EQ(computer.speech.cutOff, 1);
    EXPECT_EQ(computer.clipboard.text.size(), 66U);

    start(); // the records stand later, the template does not
    const auto& records = *state->objections.objectionLog.records;
    ASSERT_THAT(records, testing::SizeIs(2));
    EXPECT_EQ(records[0].templateUsed, "Brief Statement");
    EXPECT_EQ(records[1].templateUsed, "California (PC 632)");
    EXPECT_EQ(records[1].botName, "Otter.ai");
    EXPECT_EQ(records[1].meetingContext, "Zoom");
    EXPECT_EQ(records[1].source, DetectionSource::participant);
    EXPECT_THAT(records[0].id, testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-"
                                                     "[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
    EXPECT_NE(records[0].id, records[1].id);
    EXPECT_EQ(state->objections.selectedTemplate, ObjectionTemplate::california);
}

TEST_F(ObjectionsTest, saysWhatBecameOfTheStatement) {
    auto& app = start();
    const auto says = [&] { return app.objections.toastText.get(); };
    app.fileObjection({});
    EXPECT_EQ(says(), "Statement spoken · full text copied to clipboard");
    computer.loop.advance(5s); // the service is started, and that fails
    ASSERT_FALSE(app.objections.showingObjectionToast);
    computer.speech.become("The speech service could not be started.");
    EXPECT_TRUE(app.objections.showingObjectionToast);
    EXPECT_EQ(says(), "Full text copied to clipboard. Not spoken: the speech service could not be "
                      "started");
    computer.loop.advance(2.6s);
    EXPECT_FALSE(app.objections.showingObjectionToast);

    app.fileObjection({});
    EXPECT_THAT(says(), testing::HasSubstr("Not spoken")) << "as far as is known";
    computer.speech.become(std::nullopt);
    EXPECT_THAT(says(), testing::StartsWith("Statement spoken"));
    computer.loop.advance(60s);
    computer.speech.become("The speech service has ended.");
    EXPECT_FALSE(app.objections.showingObjectionToast) << "this is of no statement";
}

TEST_F(ObjectionsTest, keepsTheTwoHundredNewest) {
    auto& app = start();
    for (int index = 0; index < 201; ++index)
        app.fileObjection({.botName = std::to_string(index)});
    start();
    const auto& records = *state->objections.objectionLog.records;
    ASSERT_THAT(records, testing::SizeIs(200));
    EXPECT_EQ(records.front().botName, "200");
    EXPECT_EQ(records.back().botName, "1");
}

TEST_F(ObjectionsTest, speaksWithTheServicesOwnVoiceWhereThereIsNoEnglishOne) {
    computer.speech.installed = {{"Ann", "de-DE", 3}};
    start().fileObjection({});
    EXPECT_THAT(computer.speech.voicesUsed, ElementsAre("default for en-US"));
}

TEST_F(ObjectionsTest, objectsFromANotification) {
    computer.startOtter();
    auto& app = start();
    std::size_t records = 0;
    const auto object = [&](const std::string& identifier) {
        computer.notifications.press("OBJECT_ACTION", identifier);
        EXPECT_EQ(app.objections.objectionLog.records->size(), records++);
        computer.loop.runPosted();
        return app.objections.objectionLog.records->front();
    };
    EXPECT_EQ(object("bot-detected-otter").botName, "Otter.ai");
    for (const auto* const other : {"cal-bot-otter-cal-E1", "participant-bot-Zoom-x", "?"}) {
        const auto record = object(other);
        EXPECT_FALSE(record.botName || record.meetingContext || record.source);
    }
    computer.notifications.press("DISMISS_ACTION", "bot-detected-otter");
    computer.loop.runPosted();
    EXPECT_THAT(computer.notifications.delivered, IsEmpty());
    EXPECT_THAT(*app.objections.objectionLog.records, testing::SizeIs(4));
}

TEST_F(ObjectionsTest, namesTheFirstThatIsThere) {
    computer.inviteOtter("E1", 1h);
    auto& app = start();
    app.objectToFirst();
    EXPECT_EQ(app.objections.objectionLog.records->front().meetingContext, "Otter.ai");
    meet({"Fireflies.ai Notetaker"});
    computer.loop.advance(11s);
    app.objectToFirst();
    EXPECT_EQ(app.objections.objectionLog.records->front().botName, "Fireflies.ai");
    EXPECT_EQ(app.objections.objectionLog.records->front().meetingContext, "Zoom");
    EXPECT_FALSE(app.objections.objectionLog.records->front().source);
}

TEST_F(ObjectionsTest, recommendsWithTheNameOfWhatWasFound) {
    auto& app = start();
    app.share();
    EXPECT_EQ(computer.clipboard.text,
              "I use Quorva to detect AI recording bots in my meetings. It spots Otter, Fireflies, "
              "Gong & 180+ more. Free to try: https://quorva.app");
    computer.startOtter();
    computer.loop.advance(3s);
    app.share();
    EXPECT_EQ(computer.clipboard.text,
              "Heads up \u2014 I just detected Otter.ai on my Mac using Quorva, a tool that spots "
              "AI recording bots in Zoom, Teams & Meet. Free to try: https://quorva.app");
    meet({"Fireflies.ai Notetaker"});
    computer.loop.advance(11s);
    app.share();
    EXPECT_THAT(computer.clipboard.text,
                testing::StartsWith("Heads up \u2014 I just detected Fireflies.ai in my meeting"));
}

} // namespace
} // namespace quorva
