#include "platform/linux/accessibility/AtspiProtocol.h"

#include <gtest/gtest.h>

namespace quorva {
namespace {

GVariantPtr parsed(const char* text) {
    return GVariantPtr(g_variant_ref_sink(g_variant_new_parsed(text)));
}

GVariantPtr aText(const std::string& text) {
    return GVariantPtr(g_variant_ref_sink(g_variant_new("(s)", text.c_str())));
}

AtspiEvent objectEvent(const char* member, const char* parameters) {
    return decodeEvent("/e", "org.a11y.atspi.Event.Object", member, parsed(parameters).get());
}

} // namespace

TEST(AtspiProtocolTest, treatsValuesOfOtherTypesAsAbsent) {
    for (const char* const reply :
         {"()", "(@x 1,)", "(@ay [],)", "(1.5,)", "(@u 1, 'two')", "(<@x 1>,)", "(<@ay []>,)",
          "(<<'text'>>,)", "([('a', 'b')],)", "(('a', 'b'),)", "'text'", "@u 1"}) {
        const auto value = parsed(reply);
        EXPECT_FALSE(decodeNumber(value.get())) << reply;
        EXPECT_FALSE(decodeText(value.get())) << reply;
        EXPECT_FALSE(decodeTextProperty(value.get())) << reply;
        EXPECT_FALSE(decodeCountProperty(value.get())) << reply;
        EXPECT_FALSE(decodeTruth(value.get())) << reply;
        EXPECT_FALSE(decodeDetails(value.get())) << reply;
        EXPECT_FALSE(decodeReferences(value.get(), ":1.5", 9)) << reply;
        EXPECT_FALSE(decodeReference(value.get(), ":1.5")) << reply;
        EXPECT_FALSE(hasState(value.get(), AtspiState::showing)) << reply;
    }
    EXPECT_FALSE(decodeNumber(nullptr));
    EXPECT_FALSE(decodeText(nullptr));
    EXPECT_FALSE(decodeTextProperty(nullptr));
    EXPECT_FALSE(decodeDetails(nullptr));
    EXPECT_FALSE(decodeReferences(nullptr, "", 9));
    EXPECT_FALSE(decodeReference(nullptr, ""));
    EXPECT_FALSE(hasState(nullptr, AtspiState::showing));
}

TEST(AtspiProtocolTest, keepsTheValidPartsOfDetails) {
    const auto reply = parsed("({'Name': <'Ben'>, 'Description': <7>, 'ChildCount': <'many'>,"
                              " 'HelpText': <'help'>, 'Parent': <(':1.1', objectpath '/a')>},)");
    EXPECT_EQ(decodeDetails(reply.get()), (AtspiDetails{"Ben", "", "help", -1}));
}

TEST(AtspiProtocolTest, leavesOutInvalidReferences) {
    const auto reply =
        parsed("([(':1.9', objectpath '/a'), ('', '/b'), ('', '/org/a11y/atspi/null'),"
               " ('no name', '/c'), ('org.example.App', '/d'), (':1.9', '/e')],)");
    using References = std::vector<AtspiReference>;
    EXPECT_EQ(
        decodeReferences(reply.get(), ":1.5", 9),
        (References{{":1.9", "/a"}, {":1.5", "/b"}, {"org.example.App", "/d"}, {":1.9", "/e"}}));
    EXPECT_EQ(decodeReferences(reply.get(), ":1.5", 2),
              (References{{":1.9", "/a"}, {":1.5", "/b"}}));
    EXPECT_EQ(decodeReferences(reply.get(), ":1.5", 0), References{});
    EXPECT_FALSE(
        decodeReference(parsed("((':1.9', objectpath '/org/a11y/atspi/null'),)").get(), ":1.5"));
    EXPECT_EQ(decodeReference(parsed("(('', objectpath '/b'),)").get(), ":1.5"),
              (AtspiReference{":1.5", "/b"}));
}

TEST(AtspiProtocolTest, cutsLongTextsAtTheEndOfACharacter) {
    const std::string euro = "\u20AC"; // three bytes
    for (std::size_t before = maxAtspiText - 4; before <= maxAtspiText; ++before) {
        const auto cut = decodeText(aText(std::string(before, 'x') + euro + euro).get());
        const bool fits = before + euro.size() <= maxAtspiText;
        EXPECT_EQ(cut, std::string(before, 'x') + (fits ? euro : "")) << before;
    }
}

TEST(AtspiProtocolTest, findsStatesInTheFirstWordOnly) {
    const auto showing = 1U << 25U;
    const auto states = [](std::vector<std::uint32_t> words) {
        return GVariantPtr(g_variant_ref_sink(
            g_variant_new("(@au)", g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, words.data(),
                                                             words.size(), 4))));
    };
    EXPECT_TRUE(hasState(states({showing, 0}).get(), AtspiState::showing));
    EXPECT_TRUE(hasState(states({showing}).get(), AtspiState::showing));
    EXPECT_FALSE(hasState(states({0, showing}).get(), AtspiState::showing));
    EXPECT_FALSE(hasState(states({}).get(), AtspiState::showing));
    EXPECT_TRUE(hasState(states({1U << 31U}).get(), AtspiState::managesDescendants));
}

TEST(AtspiProtocolTest, decodesSignalsWhateverTheyCarry) {
    EXPECT_EQ(objectEvent("ChildrenChanged", "('add', 0, 0, <(':1.1', objectpath '/new')>)"),
              (AtspiEvent{"/e", AtspiChange::children}));
    EXPECT_EQ(objectEvent("PropertyChange", "('accessible-parent', 0, 0, <('', objectpath '/p')>)"),
              (AtspiEvent{"/p", AtspiChange::children}))
        << "the parent has a child more";
    EXPECT_EQ(objectEvent("PropertyChange",
                          "('accessible-parent', 0, 0, <('', objectpath '/org/a11y/atspi/null')>)"),
              (AtspiEvent{"/e", AtspiChange::none}));
    EXPECT_EQ(objectEvent("PropertyChange", "('accessible-parent', 0, 0, <'nobody'>)"),
              (AtspiEvent{"/e", AtspiChange::none}));
    EXPECT_EQ(objectEvent("PropertyChange", "('accessible-name',)"),
              (AtspiEvent{"/e", AtspiChange::name}));
    EXPECT_EQ(objectEvent("PropertyChange", "('accessible-value', 0, 0, <1>)"),
              (AtspiEvent{"/e", AtspiChange::none}));
    EXPECT_EQ(objectEvent("StateChanged", "('showing', 1, 0, <0>)"),
              (AtspiEvent{"/e", AtspiChange::visibility}));
    EXPECT_EQ(objectEvent("StateChanged", "('defunct', 1, 0, <0>)"),
              (AtspiEvent{"/e", AtspiChange::gone}));
    for (const char* const nonsense : {"()", "(1, 2, 3, 4)", "('defunct', 0, 0, 'unboxed')"})
        EXPECT_EQ(objectEvent("TextChanged", nonsense), (AtspiEvent{"/e", AtspiChange::text}));
    EXPECT_EQ(decodeEvent("/e", "org.a11y.atspi.Event.Object", "StateChanged", nullptr),
              (AtspiEvent{"/e", AtspiChange::none}));
    EXPECT_EQ(decodeEvent("/e", "org.a11y.atspi.Event.Mouse", "Abs", nullptr),
              (AtspiEvent{"/e", AtspiChange::none}));
}

} // namespace quorva
