#include "detectors/Retention.h"

#include "detectors/MeetingMonitorTest.h"

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using RetentionTest = MeetingMonitorTest;

/// A bot is seen `sightings` times, then its window changes. With passes this far apart, it is
/// listed for `expected` after the last sighting.
struct Absence {
    const char* what;
    int sightings;
    std::function<void(FakeAccessibilityTree&, FakeApplications&)> becomes;
    Seconds interval;
    Seconds expected;
};

TEST_F(RetentionTest, keepsABotForAsLongAsItMayStillBeThere) {
    const auto leaves = [](auto& windows, auto&) {
        windows.applications[zoom].windows[0].tree = meetingWindow({"Ann"});
    };
    const auto closes = [](auto& windows, auto&) { windows.applications[zoom].windows.clear(); };
    const auto hangs = [](auto& windows, auto&) {
        windows.applications[zoom].problem = "no answer";
    };
    const auto isBeingRead = [](auto& windows, auto&) {
        windows.applications[zoom].windows[0].isAnswering = false;
    };
    const auto quits = [](auto& windows, auto& running) {
        windows.applications.erase(zoom);
        running.running.erase(running.running.begin());
    };
    const std::vector<Absence> absences{
        {"leaves, seen once", 1, leaves, 5s, 15s},
        {"leaves, confirmed", 3, leaves, 5s, 15s},
        {"leaves, missed by passes out of turn", 3, leaves, 1s, 15s},
        {"leaves, seen once, missed rarely", 1, leaves, 15s, 15s},
        {"leaves, seen twice, missed rarely", 2, leaves, 15s, 15s},
        {"leaves, confirmed, missed rarely", 3, leaves, 30s, 60s},
        {"closes, seen twice", 2, closes, 1s, 15s},
        {"closes, confirmed", 3, closes, 1s, 300s},
        {"hangs, seen once", 1, hangs, 1s, 15s},
        {"hangs, confirmed", 3, hangs, 1s, 300s},
        {"being read, confirmed", 3, isBeingRead, 1s, 300s},
        {"quits, seen twice", 2, quits, 1s, 15s},
        {"quits, confirmed", 3, quits, 1s, 60s},
    };
    const auto running = applications.running;
    for (const auto& absence : absences) {
        applications.running = running;
        tree.applications[zoom] = {};
        inZoom({otter, "Recording in progress"});
        start();
        for (int i = 0; i < absence.sightings; ++i) {
            loop.advance(absence.interval);
            pass();
        }
        const auto last = loop.now();
        absence.becomes(tree, applications);
        for (int i = 0; i < 1000 && !bots().empty(); ++i) {
            loop.advance(absence.interval);
            pass();
        }
        EXPECT_EQ(Seconds(loop.now() - last), absence.expected) << absence.what;
        EXPECT_THAT(*monitor->recordingIndicators, IsEmpty()) << absence.what;
        EXPECT_THAT(announced(),
                    ElementsAre("+Zoom-otter.ai notetaker", "!Zoom-recording in progress",
                                "-Zoom-otter.ai notetaker", "/Zoom-recording in progress"))
            << absence.what;
    }
}

TEST_F(RetentionTest, countsMissesInARow) {
    for (int i = 0; i < 9; ++i) {
        inZoom({i % 3 == 0 ? otter : "Ann"});
        pass();
        loop.advance(5s);
    }
    EXPECT_THAT(announced(), ElementsAre("+Zoom-otter.ai notetaker"));
}

TEST_F(RetentionTest, startsAnewWithABotThatWasGone) {
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 2; ++i) {
            inZoom({otter});
            pass();
            loop.advance(5s);
        }
        tree.applications[zoom].windows.clear();
        loop.advance(10s);
        pass();
        EXPECT_THAT(announced(),
                    ElementsAre("+Zoom-otter.ai notetaker", "-Zoom-otter.ai notetaker"));
    }
}

TEST_F(RetentionTest, forgetsTheBannerOfAPlatformWhenAnotherOneIsActive) {
    inZoom({otter, "Recording in progress"});
    for (int i = 0; i < 3; ++i)
        pass();
    tree.applications[zoom].windows.clear();
    pass();
    EXPECT_THAT(*monitor->recordingIndicators, SizeIs(1));
    shows(chrome, "", browserWindow("https://meet.google.com/abc", {"Gemini is taking notes"}));
    announced();
    pass();
    EXPECT_THAT(announced(),
                ElementsAre("+Google Meet-gemini is taking notes",
                            "!Google Meet-gemini is taking notes", "/Zoom-recording in progress"));
    EXPECT_THAT(bots(), ElementsAre("Gemini is taking notes", otter)) << "bots are kept";
}

TEST_F(RetentionTest, listsByConfidenceAndThenWhatItKeepsByFirstSighting) {
    inZoom({"Ask Copilot", "Sembly Notetaker", "Acme Notetaker", "Bolt Notetaker"});
    pass();
    EXPECT_THAT(bots(),
                ElementsAre("Sembly Notetaker", "Acme Notetaker", "Bolt Notetaker", "Ask Copilot"));
    inZoom({"Bolt Notetaker"});
    pass();
    inZoom({"Fathom Notetaker"});
    pass();
    EXPECT_THAT(bots(), ElementsAre("Fathom Notetaker", "Sembly Notetaker", "Acme Notetaker",
                                    "Bolt Notetaker", "Ask Copilot"));
}

TEST_F(RetentionTest, announcesANewWordingOfABotAndTheEndOfTheOld) {
    inZoom({otter});
    pass();
    inZoom({"Ann's Notetaker (Otter.ai)"});
    loop.advance(5s);
    pass();
    EXPECT_THAT(announced(),
                ElementsAre("+Zoom-otter.ai notetaker", "+Zoom-ann's notetaker (otter.ai)",
                            "-Zoom-otter.ai notetaker"));
    EXPECT_THAT(bots(), SizeIs(1));
}

} // namespace
} // namespace quorva
