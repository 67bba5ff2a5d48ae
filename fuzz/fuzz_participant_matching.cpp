// Any bytes in place of a text in a meeting window: what the indexed rules make of it is what a
// walk through the tables' rows makes of it.
#include "Expect.h"
#include "support/PlainParticipantMatching.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto lower = quorva::lowerCased(text);
    expect(quorva::matchBotName(text) == quorva::plain::matchBotName(text, lower));
    expect(quorva::matchParticipant(text) == quorva::plain::matchParticipant(text, lower));
    for (const auto* platform : {"Zoom", "Teams", "Google Meet", "Slack"})
        expect(quorva::matchIndicator(text, platform) ==
               quorva::plain::matchIndicator(lower, platform));
    expect(quorva::characterCount(text) <= size);
    return 0;
}
