// Speech Dispatcher as its client sees it: a service that the test plays, well or badly, and the
// real one, which the test hears over a private sound server.
#include "platform/linux/speech/SpeechDispatcher.h"

#include "support/PlayedSpeechService.h"
#include "support/PrivateSound.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>

namespace quorva {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Optional;
using Manner = PlayedSpeechService::Manner;

const SpeechVoice* german(const std::vector<SpeechVoice>& installed) {
    for (const auto& voice : installed)
        if (voice.language == "de-DE")
            return &voice;
    return nullptr;
}

class SpeechDispatcherTest : public testing::Test, protected TurningMainLoop {
protected:
    SpeechDispatcherTest() { ::setenv("SPEECHD_ADDRESS", ("unix_socket:" + address).c_str(), 1); }

    void start(SpeechDispatcher::Limits limits = {.answer = Seconds(10)}) {
        speech.emplace(loop, limits);
    }
    [[nodiscard]] bool receives(const PlayedSpeechService& service, const std::string& line,
                                int times = 1) {
        return comesTo([&] { return service.count(line) == times; });
    }

    const std::string address = std::string(std::getenv("HOME")) + "/speech.sock";
    std::optional<SpeechDispatcher> speech;
};

/// With the real service, at its usual address.
class RealSpeechTest : public testing::Test, protected TurningMainLoop {
protected:
    /// The sound recorded so far.
    [[nodiscard]] std::vector<std::int16_t> heard() const {
        std::ifstream file(recording, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::vector<std::int16_t> samples(bytes.size() / 2);
        std::copy_n(bytes.data(), samples.size() * 2, reinterpret_cast<char*>(samples.data()));
        return samples;
    }
    static int loudest(std::span<const std::int16_t> samples) {
        int most = 0;
        for (const int sample : samples)
            most = std::max(most, std::abs(sample));
        return most;
    }

    const std::string recording = std::string(std::getenv("HOME")) + "/heard";
};

} // namespace

TEST_F(SpeechDispatcherTest, speaksInTheVoiceAndOnTheScalesAskedFor) {
    PlayedSpeechService service(address);
    start();
    speech->speak({.text = "Hello\n.hidden", .voice = german, .rate = 0.25, .pitchMultiplier = 2});
    ASSERT_TRUE(receives(service, "."));
    EXPECT_THAT(service.lines(),
                IsSupersetOf({"SET SELF LANGUAGE de-DE", "SET SELF SYNTHESIS_VOICE Deutsch",
                              "SET SELF RATE -50", "SET SELF PITCH 100", "SET SELF VOLUME 100",
                              "Hello", "..hidden"}));
    speech->speak({.text = "Next"}); // without a choice: over a connection without one
    service.tellEnd(1);
    ASSERT_TRUE(receives(service, "Next"));
    EXPECT_EQ(service.connections, 2);
    EXPECT_EQ(service.count("SET SELF LANGUAGE en-US"), 1);
    ASSERT_TRUE(receives(service, ".", 2));
    service.tellEnd(1); // of another message
    service.tellEnd(2);
    EXPECT_TRUE(comesTo([&] { return !speech->isSpeaking(); }));
}

TEST_F(SpeechDispatcherTest, saysNothingThatWasStoppedBeforeItConnected) {
    PlayedSpeechService service(address);
    start();
    speech->speak({.text = "one"});
    speech->speak({.text = "two"});
    speech->stopSpeaking();
    EXPECT_FALSE(speech->isSpeaking());
    speech->speak({.text = "three"});
    ASSERT_TRUE(receives(service, "three"));
    EXPECT_EQ(service.count("one") + service.count("two"), 0);
}

TEST_F(SpeechDispatcherTest, isNotHeldUpByAServiceThatHangs) {
    PlayedSpeechService service(address);
    service.manner = Manner::hang;
    start({.answer = Seconds(0.2)});
    speech->speak({.text = "one"});
    speech->speak({.text = "two"});
    ASSERT_TRUE(comesTo([&] { return speech->problem().has_value(); }));
    EXPECT_THAT(speech->problem(), Optional(HasSubstr("does not answer")));

    service.manner = Manner::answer;
    speech->speak({.text = "three"});
    ASSERT_TRUE(receives(service, "three"));
    ASSERT_TRUE(comesTo([&] { return !speech->problem(); }));
    EXPECT_EQ(service.count("one") + service.count("two"), 0);
}

TEST_F(SpeechDispatcherTest, saysWhyNothingIsSpoken) {
    start({.answer = Seconds(10), .start = Seconds(10), .idle = Seconds(10)});
    std::optional<PlayedSpeechService> service;
    service.emplace(address);
    const auto comesToFault = [&](const std::string& part) {
        return comesTo([&] { return speech->problem().value_or("").find(part) != part.npos; });
    };
    speech->speak({.text = "one"});
    ASSERT_TRUE(receives(*service, "."));
    service->hangUp();
    EXPECT_TRUE(comesToFault("has ended"));

    service->manner = Manner::refuse;
    speech->speak({.text = "two"});
    EXPECT_TRUE(comesToFault("refused"));
    service->manner = Manner::talkNonsense;
    speech->speak({.text = "three"});
    EXPECT_TRUE(comesToFault("makes no sense"));
    service->manner = Manner::answer;
    speech->speak({.text = "four"});
    EXPECT_TRUE(receives(*service, "four"));
    EXPECT_TRUE(comesTo([&] { return !speech->problem(); }));

    service.reset();
    fs::remove(address);
    ::setenv("PATH", "/nowhere", 1);
    speech->speak({.text = "five"}); // it is not known yet that the connection has ended
    EXPECT_TRUE(comesToFault("has ended"));
    speech->speak({.text = "six"});
    EXPECT_TRUE(comesToFault("No speech service is installed."));
    EXPECT_EQ(SpeechDispatcher(loop).problem(), "No speech service is installed.");
}

TEST_F(SpeechDispatcherTest, disconnectsFromAServiceThatIsNotNeeded) {
    PlayedSpeechService service(address);
    start({.answer = Seconds(10), .idle = Seconds(0.1)});
    EXPECT_EQ(service.connections, 0);
    speech->speak({.text = "one"});
    ASSERT_TRUE(receives(service, "."));
    service.tellEnd(1);
    EXPECT_TRUE(comesTo([&] { return service.disconnections == 1; }));
    EXPECT_EQ(speech->problem(), std::nullopt);
}

TEST_F(RealSpeechTest, isHeardUntilItIsStopped) {
    PrivateSound sound;
    ASSERT_TRUE(comesTo([&] { return sound.isReady(); }));
    StartedProgram recorder{"parec",          "-d",           "ear.monitor",    "--raw",
                            "--rate=8000",    "--channels=1", "--format=s16le", "--latency-msec=50",
                            recording.c_str()};
    ASSERT_TRUE(comesTo([&] { return !heard().empty(); }));
    SpeechDispatcher speech(loop, {.answer = Seconds(20), .start = Seconds(30)});
    EXPECT_EQ(speech.problem(), std::nullopt);

    speech.speak({.text = "This meeting is being recorded.", .rate = 1});
    ASSERT_TRUE(comesTo([&] { return loudest(heard()) > 1000; })) << speech.problem().value_or("");
    EXPECT_TRUE(comesTo([&] { return !speech.isSpeaking(); }));

    std::string longText;
    for (int count = 0; count < 100; ++count)
        longText += "I do not agree to a recording. ";
    const auto before = heard().size();
    speech.speak({.text = longText});
    ASSERT_TRUE(comesTo([&] {
        const auto all = heard();
        return loudest(std::span(all).subspan(before)) > 1000;
    }));
    EXPECT_TRUE(speech.isSpeaking());
    speech.stopSpeaking();
    EXPECT_TRUE(comesTo([&] {
        constexpr std::size_t second = 8000;
        const auto all = heard();
        return all.size() > before + second && loudest(std::span(all).last(second)) < 50;
    })) << "a second of silence";
}

} // namespace quorva
