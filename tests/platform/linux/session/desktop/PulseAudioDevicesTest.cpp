// The sound devices of a real sound server of the test's own.
#include "platform/linux/desktop/PulseAudioDevices.h"

#include "support/PrivateSound.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <csignal>

namespace quorva {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::Optional;
using Devices = std::optional<std::vector<AudioDevice>>;

class PulseAudioDevicesTest : public testing::Test, protected TurningMainLoop {
protected:
    Devices fetch(Seconds limit = Seconds(20)) {
        PulseAudioDevices devices(loop, limit);
        std::optional<Devices> answer;
        const auto subscription =
            devices.fetchDevices([&](Devices found) { answer = std::move(found); });
        EXPECT_TRUE(comesTo([&] { return answer.has_value(); }));
        return answer.value_or(std::nullopt);
    }
};

} // namespace

TEST_F(PulseAudioDevicesTest, listsSinksAndSourcesByTheirDescriptions) {
    PrivateSound sound;
    ASSERT_TRUE(comesTo([&] { return sound.isReady(); }));
    EXPECT_THAT(fetch(), Optional(ElementsAre(FieldsAre(0U, "Test-Ear", false),
                                              FieldsAre(0U, "Monitor of Test-Ear", false),
                                              FieldsAre(1U, "Test-Microphone", true))));
    PulseAudioDevices devices(loop);
    auto dropped = devices.fetchDevices([](const Devices&) { FAIL() << "was dropped"; });
    dropped.reset();
    EXPECT_TRUE(fetch());

    g_subprocess_send_signal(sound.server(), SIGSTOP);
    EXPECT_EQ(fetch(Seconds(0.3)), std::nullopt) << "the server hangs";
    g_subprocess_send_signal(sound.server(), SIGCONT);
    EXPECT_TRUE(fetch());
}

TEST_F(PulseAudioDevicesTest, startsNoServerWhereThereIsNone) {
    EXPECT_EQ(fetch(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(PrivateSound::socket()));
}

} // namespace quorva
