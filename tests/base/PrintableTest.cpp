#include "base/Printable.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace quorva {
namespace {

const std::string hostile = "a\nb\x1b[2J\a\u009b\u202e\u2028\U000e0041 \u00e9";

TEST(Printable, spellsOutWhatWouldActOnATerminalOrForgeALine) {
    EXPECT_EQ(printable(hostile).str(),
              "a\\nb\\u001b[2J\\u0007\\u009b\\u202e\\u2028\\ue0041 \u00e9");
    EXPECT_EQ(printable("\xc3").str(), "\uFFFD");
    EXPECT_EQ(Printable::format("{}: {:>3}\n", hostile.substr(0, 3), 7).str(), "a\\nb:   7\n");
}

TEST(Printable, escapesJsonWithoutChangingWhatItMeans) {
    EXPECT_EQ(printableJson("\"x\u009b\u202e\U000e0041\u00e9\x7f\"").str(),
              "\"x\\u009b\\u202e\\udb40\\udc41\u00e9\\u007f\"");
}

TEST(Printable, cutsALongTextBetweenCharacters) {
    std::string text(Printable::mostBytes - 1, 'x');
    EXPECT_EQ(Printable::format("{}", text + "\u00e9").str(), text + "…");
}

template <typename Text>
constexpr bool canBePrintedAsItIs = std::is_convertible_v<Text, Printable>;

TEST(Printable, isMadeOfNoTextOfOthers) {
    EXPECT_FALSE(canBePrintedAsItIs<std::string>);
    EXPECT_FALSE(canBePrintedAsItIs<std::string_view>);
    EXPECT_FALSE(canBePrintedAsItIs<const char*>);
    EXPECT_FALSE(canBePrintedAsItIs<char(&)[8]>);
}

} // namespace
} // namespace quorva
