#include "catalogue/BotSignatureDatabase.h"

#include "base/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace quorva {
namespace {

const BotSignatureDatabase& database = BotSignatureDatabase::shared();

std::string shown(const std::optional<BotMatch>& match) {
    return match ? match->signature.id + " " + std::to_string(match->confidence) : "nothing";
}

/// The rules as a plain walk through the rows: the reference for the indexed ones.
struct LinearReference {
    using Result = std::optional<BotMatch>;

    static Result identifier(const std::string& text) {
        const auto lower = lowerCased(text);
        for (const auto& row : database.signatures())
            for (const auto& entry : row.bundleIdentifiers)
                if (lower.find(entry) != std::string::npos)
                    return BotMatch{row, std::min(row.baseConfidence + 10, 100)};
        return std::nullopt;
    }

    static Result path(const std::string& text) {
        const auto lower = lowerCased(text);
        if (lower == "/usr/bin/rev")
            return std::nullopt;
        for (const auto& row : database.signatures())
            for (const auto& entry : row.pathPatterns)
                if (lastPathComponent(lower) == entry || lower.ends_with("/" + entry) ||
                    lower.find("/" + entry + "/") != std::string::npos)
                    return BotMatch{row, row.baseConfidence};
        return std::nullopt;
    }

    static Result name(const std::string& text) {
        const auto lower = lowerCased(text);
        for (const auto& row : database.signatures())
            for (const auto& entry : row.processNames) {
                if (lower == entry)
                    return BotMatch{row, row.baseConfidence};
                const auto at = lower.find(entry);
                if (at != std::string::npos && !endsInLetterOrNumber(lower.substr(0, at)) &&
                    !continuesWord(lower.substr(at + entry.size())))
                    return BotMatch{row, std::max(row.baseConfidence - 5, 50)};
            }
        return std::nullopt;
    }
};

TEST(BotSignatureDatabase, hasNoRowThatIsIncompleteRepeatedOrNeverFound) {
    std::set<std::string> ids;
    for (const auto& row : database.signatures()) {
        EXPECT_TRUE(ids.insert(row.id).second) << row.id;
        EXPECT_EQ(row.id, lowerCased(row.id));
        EXPECT_FALSE(row.name.empty()) << row.id;
        EXPECT_TRUE(row.baseConfidence > 0 && row.baseConfidence <= 100) << row.id;
        for (const auto* list : {&row.processNames, &row.bundleIdentifiers, &row.pathPatterns}) {
            EXPECT_FALSE(list->empty()) << row.id;
            for (const auto& entry : *list)
                EXPECT_EQ(trimmed(entry), entry) << row.id;
        }
        for (const auto& pattern : row.pathPatterns)
            EXPECT_EQ(pattern.find('/'), std::string::npos) << pattern << " is not one folder";

        const auto finds = [&](const std::optional<BotMatch>& match) {
            return match && match->signature.id == row.id;
        };
        const auto isFoundByName = [&](const auto& name) {
            return finds(database.matchProcessName(name));
        };
        EXPECT_TRUE(std::any_of(row.processNames.begin(), row.processNames.end(), isFoundByName))
            << row.id << ": the rows above match all of its names";
    }
}

TEST(BotSignatureDatabase, matchesIdentifiersThatAreOrContainAnEntry) {
    EXPECT_EQ(shown(database.matchBundleIdentifier("com.aisense.Otter")), "otter 100");
    EXPECT_EQ(shown(database.matchBundleIdentifier("com.aisense.otter.helper")), "otter 100");
    EXPECT_EQ(shown(database.matchBundleIdentifier("io.gong.desktop")), "gong 100");
    EXPECT_EQ(shown(database.matchBundleIdentifier("com.recap.x")), "recap 90");
    EXPECT_EQ(shown(database.matchBundleIdentifier("org.mozilla.firefox")), "nothing");
    EXPECT_EQ(shown(database.matchBundleIdentifier("")), "nothing");
}

TEST(BotSignatureDatabase, matchesPathsByWholeFolderNames) {
    const auto match = [](const char* path) { return shown(database.matchProcessPath(path)); };
    EXPECT_EQ(match("/Applications/Otter.app/Contents/MacOS/Otter"), "otter 95");
    EXPECT_EQ(match("/opt/OTTER.APP"), "otter 95");
    EXPECT_EQ(match("/opt/otter.app/"), "otter 95");
    EXPECT_EQ(match("otter.app"), "otter 95");
    EXPECT_EQ(match("otter.app/bin/x"), "nothing") << "no slash stands before the folder";
    EXPECT_EQ(match("/opt/notter.app/bin/x"), "nothing");
    EXPECT_EQ(match("/home/plaud.app/otter.app/x"), "otter 95") << "the upper row wins";
    EXPECT_EQ(match("/usr/bin/pluely"), "pluely 90");
    EXPECT_EQ(match("/USR/bin/rev"), "nothing");
    EXPECT_EQ(match(""), "nothing");
    EXPECT_TRUE(database.isExcludedProcessPath("/usr/bin/REV"));
    EXPECT_FALSE(database.isExcludedProcessPath("/usr/local/bin/rev"));
}

TEST(BotSignatureDatabase, matchesNamesAsWholeWords) {
    const auto match = [](const char* name) { return shown(database.matchProcessName(name)); };
    EXPECT_EQ(match("Otter"), "otter 95");
    EXPECT_EQ(match("Otter Helper"), "otter 90");
    EXPECT_EQ(match("Otterly"), "nothing");
    EXPECT_EQ(match("grainger"), "nothing");
    EXPECT_EQ(match("grain-app"), "grain 80");
    EXPECT_EQ(match("fred2 fred"), "nothing") << "only the first occurrence counts";
    EXPECT_EQ(match("recap alter"), "recap 75");
    EXPECT_EQ(match("TL;DV Desktop"), "tldv 85");
    EXPECT_EQ(match("Happy Scribe"), "happyscribe 85");
    EXPECT_EQ(match(""), "nothing");
}

TEST(BotSignatureDatabase, knowsLettersAndNumbersBeyondAscii) {
    const auto match = [](const char* name) { return shown(database.matchProcessName(name)); };
    EXPECT_EQ(match("über-otter"), "otter 90");
    EXPECT_EQ(match("éotter"), "nothing");
    EXPECT_EQ(match("e\u0301otter"), "nothing") << "a mark belongs to the letter before it";
    EXPECT_EQ(match("otter\u0301"), "nothing") << "the mark makes it another word";
    EXPECT_EQ(match("otter\u00b2"), "nothing") << "a superscript two is a number";
    EXPECT_EQ(match("「otter」"), "otter 90");
    EXPECT_EQ(match("\u212aRISP"), "krisp 85") << "the Kelvin sign is a K in lower case";
    EXPECT_EQ(match("\xff\xfeotter\xff"), "otter 90") << "invalid bytes are not letters";
}

TEST(BotSignatureDatabase, findsWhatAPlainWalkThroughTheRowsFinds) {
    std::vector<std::string> pieces{"/", "/",      ".",    "-",          " ",
                                    "x", "2",      "App",  ".APP",       "usr/bin/",
                                    "é", "\u0301", "\xff", "/Contents/", "helper"};
    for (const auto& row : database.signatures())
        for (const auto* list : {&row.processNames, &row.bundleIdentifiers, &row.pathPatterns})
            pieces.insert(pieces.end(), list->begin(), list->end());

    std::mt19937 random(20260302);
    std::uniform_int_distribution<std::size_t> anyPiece(0, pieces.size() - 1);
    std::uniform_int_distribution<int> length(1, 6);
    int hits = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        for (int left = length(random); left > 0; --left)
            text += pieces[anyPiece(random)];
        ASSERT_EQ(shown(database.matchBundleIdentifier(text)),
                  shown(LinearReference::identifier(text)))
            << text;
        ASSERT_EQ(shown(database.matchProcessPath(text)), shown(LinearReference::path(text)))
            << text;
        const auto name = LinearReference::name(text);
        ASSERT_EQ(shown(database.matchProcessName(text)), shown(name)) << text;
        hits += name.has_value();
    }
    EXPECT_GT(hits, 1'000) << "the inputs no longer try the rules";
}

} // namespace
} // namespace quorva
