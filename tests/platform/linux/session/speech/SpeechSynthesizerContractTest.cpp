// What every speech synthesizer promises, asked of the one in memory and of Speech Dispatcher's.
#include "platform/linux/speech/SpeechDispatcher.h"
#include "support/FakeDesktop.h"
#include "support/PlayedSpeechService.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace quorva {
namespace {

using testing::ElementsAre;

/// The first German voice; with none, the service's own choice.
const SpeechVoice* german(const std::vector<SpeechVoice>& installed) {
    for (const auto& voice : installed)
        if (voice.language == "de-DE")
            return &voice;
    return nullptr;
}

const SpeechVoice* none(const std::vector<SpeechVoice>&) {
    return nullptr;
}

struct InMemory {
    FakeSpeechSynthesizer speech;

    template <typename Condition>
    [[nodiscard]] bool comesTo(Condition condition) {
        return condition();
    }
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const auto& utterance : speech.spoken)
            texts.push_back(utterance.text);
        return texts;
    }
    [[nodiscard]] std::vector<std::string> languages() const {
        std::vector<std::string> languages;
        for (const auto& utterance : speech.spoken) {
            const auto* const voice = utterance.voice ? utterance.voice(speech.installed) : nullptr;
            languages.push_back(voice != nullptr ? voice->language : utterance.language);
        }
        return languages;
    }
    [[nodiscard]] int cancellations() const { return speech.cutOff; }
    void finish() { speech.finish(); }
    void failService() { speech.become("The service has ended."); }
    void repairService() { speech.become(std::nullopt); }
};

struct OverASocket : TurningMainLoop {
    static std::string announcedAddress() {
        const auto address = std::string(std::getenv("HOME")) + "/speech.sock";
        ::setenv("SPEECHD_ADDRESS", ("unix_socket:" + address).c_str(), 1);
        return address;
    }

    [[nodiscard]] std::vector<std::string> texts() const { return service.texts(); }
    [[nodiscard]] std::vector<std::string> languages() const {
        const std::string prefix = "SET SELF LANGUAGE ";
        std::vector<std::string> languages;
        for (const auto& line : service.lines())
            if (line.starts_with(prefix))
                languages.push_back(line.substr(prefix.size()));
        return languages;
    }
    [[nodiscard]] int cancellations() const { return service.count("CANCEL SELF"); }
    void finish() { service.tellEnd(static_cast<int>(texts().size())); }
    void failService() { service.hangUp(); }
    void repairService() {} // it accepts the next connection

    PlayedSpeechService service{announcedAddress()};
    SpeechDispatcher speech{loop, {.answer = Seconds(10)}};
};

template <typename World>
class SpeechSynthesizerContract : public testing::Test {
protected:
    [[nodiscard]] SpeechSynthesizer& speech() { return world.speech; }
    [[nodiscard]] bool speaks(const std::vector<std::string>& texts) {
        return world.comesTo([&] { return world.texts() == texts; });
    }
    [[nodiscard]] bool hasProblem(bool expected) {
        return world.comesTo([&] { return speech().problem().has_value() == expected; });
    }

    World world;
};
using Worlds = testing::Types<InMemory, OverASocket>;
TYPED_TEST_SUITE(SpeechSynthesizerContract, Worlds);

TYPED_TEST(SpeechSynthesizerContract, speaksOneUtteranceAfterTheOther) {
    this->speech().speak({.text = "one"});
    this->speech().speak({.text = "two"});
    EXPECT_TRUE(this->speech().isSpeaking());
    ASSERT_TRUE(this->speaks({"one"}));
    this->world.finish();
    ASSERT_TRUE(this->speaks({"one", "two"}));
    EXPECT_TRUE(this->speech().isSpeaking());
    this->world.finish();
    EXPECT_TRUE(this->world.comesTo([&] { return !this->speech().isSpeaking(); }));
    EXPECT_EQ(this->speech().problem(), std::nullopt);
}

TYPED_TEST(SpeechSynthesizerContract, stopsWhatIsSpokenAndWhatWaits) {
    this->speech().stopSpeaking();
    this->speech().speak({.text = "one"});
    ASSERT_TRUE(this->speaks({"one"}));
    this->speech().speak({.text = "two"});
    this->speech().stopSpeaking();
    EXPECT_FALSE(this->speech().isSpeaking());
    this->speech().stopSpeaking();
    this->speech().speak({.text = "three"});
    EXPECT_TRUE(this->speech().isSpeaking());
    EXPECT_TRUE(this->speaks({"one", "three"}));
    EXPECT_EQ(this->world.cancellations(), 1);
}

TYPED_TEST(SpeechSynthesizerContract, choosesTheVoiceForEachUtterance) {
    this->speech().speak({.text = "one", .voice = german});
    ASSERT_TRUE(this->speaks({"one"}));
    this->world.finish();
    this->speech().speak({.text = "two"});
    ASSERT_TRUE(this->speaks({"one", "two"}));
    this->world.finish();
    this->speech().speak({.text = "three", .voice = none, .language = "fr-FR"});
    ASSERT_TRUE(this->speaks({"one", "two", "three"}));
    EXPECT_THAT(this->world.languages(), ElementsAre("de-DE", "en-US", "fr-FR"));
}

TYPED_TEST(SpeechSynthesizerContract, reportsAProblemAndItsEnd) {
    int changes = 0;
    auto subscription = this->speech().onProblemChange([&] { ++changes; });
    this->speech().speak({.text = "one"});
    this->speech().speak({.text = "two"});
    ASSERT_TRUE(this->speaks({"one"}));
    this->world.failService();
    ASSERT_TRUE(this->hasProblem(true));
    EXPECT_FALSE(this->speech().isSpeaking()) << "what waited was dropped";
    EXPECT_EQ(changes, 1);

    this->world.repairService();
    this->speech().speak({.text = "three"});
    ASSERT_TRUE(this->hasProblem(false));
    EXPECT_TRUE(this->speaks({"one", "three"}));
    EXPECT_EQ(changes, 2);

    subscription.reset();
    this->world.failService();
    ASSERT_TRUE(this->hasProblem(true));
    EXPECT_EQ(changes, 2);
}

} // namespace
} // namespace quorva
