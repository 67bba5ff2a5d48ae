#include "catalogue/CalendarBotDatabase.h"

#include "base/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace quorva {
namespace {

const CalendarBotDatabase& database = CalendarBotDatabase::shared();
using Result = std::optional<CalendarBotMatch>;

std::string shown(const Result& match) {
    return match ? match->signature.id + " " + std::to_string(match->confidence) : "nothing";
}

/// The rules as plain walks through the rows: the reference for the indexed ones.
Result linearEmail(const std::string& address) {
    const auto lower = lowerCased(address);
    const std::string email(trimmed(lower));
    for (const auto& row : database.signatures())
        for (const auto& exact : row.exactEmails)
            if (email == exact)
                return CalendarBotMatch{row, std::min(row.baseConfidence + 10, 100)};
    const auto at = email.find('@');
    if (at == std::string::npos)
        return std::nullopt;
    const auto local = email.substr(0, at);
    const auto domain = email.substr(at + 1);
    for (const auto& row : database.signatures()) {
        const auto& domains = row.emailDomains;
        if (std::find(domains.begin(), domains.end(), domain) != domains.end())
            return CalendarBotMatch{row, row.baseConfidence};
        for (const auto& entry : domains)
            if (domain.ends_with("." + entry))
                return CalendarBotMatch{row, std::max(row.baseConfidence - 5, 50)};
    }
    for (const auto& row : database.signatures())
        for (const auto& pattern : row.emailPatterns)
            if (local.starts_with(pattern))
                return CalendarBotMatch{row, std::max(row.baseConfidence - 15, 50)};
    return std::nullopt;
}

Result linearDisplayName(const std::string& name) {
    const auto lower = lowerCased(name);
    for (const auto& row : database.signatures())
        for (const auto& pattern : row.displayNamePatterns)
            if (std::string(trimmed(lower)).find(pattern) != std::string::npos)
                return CalendarBotMatch{row, std::max(row.baseConfidence - 20, 40)};
    return std::nullopt;
}

TEST(CalendarBotDatabase, hasNoRowThatIsIncompleteRepeatedOrNeverFound) {
    std::set<std::string> ids;
    for (const auto& row : database.signatures()) {
        EXPECT_TRUE(ids.insert(row.id).second) << row.id;
        EXPECT_TRUE(row.id.ends_with("-cal")) << row.id;
        EXPECT_FALSE(row.name.empty()) << row.id;
        EXPECT_TRUE(row.baseConfidence > 0 && row.baseConfidence <= 100) << row.id;
        for (const auto* list : {&row.exactEmails, &row.emailDomains, &row.displayNamePatterns})
            EXPECT_FALSE(list->empty()) << row.id;
        for (const auto* list :
             {&row.exactEmails, &row.emailDomains, &row.emailPatterns, &row.displayNamePatterns})
            for (const auto& entry : *list)
                EXPECT_TRUE(!entry.empty() && trimmed(entry) == entry) << row.id;
        for (const auto& address : row.exactEmails) {
            EXPECT_EQ(std::count(row.emailDomains.begin(), row.emailDomains.end(),
                                 address.substr(address.find('@') + 1)),
                      1)
                << address << " is not at a domain of its row";
            const auto match = database.matchEmail(address);
            EXPECT_TRUE(match && match->signature.id == row.id) << address;
        }
    }
    for (const auto& prefix : database.genericBotPrefixes())
        EXPECT_EQ(database.matchGenericPrefix(prefix + "@example.com"), prefix)
            << "an earlier prefix matches all that this one does";
}

TEST(CalendarBotDatabase, ranksAddressesByHowExactlyTheyFit) {
    const std::pair<const char*, const char*> cases[] = {
        {" \t\u00a0NoteTaker@Otter.AI\u2003", "otter-cal 100"},
        {"someone@otter.ai", "otter-cal 95"},
        {"someone@eu.otter.ai", "otter-cal 90"},
        {"someone@notter.ai", "nothing"},
        {"otterpilot-7@example.com", "otter-cal 80"},
        {"otterpilot@fathom.video", "fathom-cal 90"}, // a domain comes before a pattern
        {"x@chorus.zoominfo.com", "chorus-cal 90"},
        {"x@zoominfo.com", "nothing"},
        {"otterpilot", "nothing"},
        {"a@b@otter.ai", "nothing"}, // the domain begins after the first @
        {"bot@grain.co", "grain-cal 95"},
        {" ", "nothing"},
    };
    for (const auto& [address, expected] : cases)
        EXPECT_EQ(shown(database.matchEmail(address)), expected) << address;
}

TEST(CalendarBotDatabase, findsProductsInDisplayNamesAndPrefixesInMailboxes) {
    const std::pair<const char*, const char*> names[] = {
        {"Fathom Notetaker", "fathom-cal 70"},
        {"  ", "nothing"},
        {"wingman", "clari-cal 65"},
        {"Sybill for Gong", "gong-cal 70"},
        {"Jamie Lee", "nothing"},
        {"Anna's Notetaker (Otter.ai)", "otter-cal 75"},
    };
    for (const auto& [name, expected] : names)
        EXPECT_EQ(shown(database.matchDisplayName(name)), expected) << name;

    EXPECT_EQ(database.matchGenericPrefix("Notetaker.Team@example.com"), "notetaker");
    EXPECT_EQ(database.matchGenericPrefix("bothwell@example.com"), "bot");
    EXPECT_EQ(database.matchGenericPrefix("noreply+bot1@example.com"), "noreply+bot");
    EXPECT_EQ(database.matchGenericPrefix("team@example.com"), std::nullopt);
    EXPECT_EQ(database.matchGenericPrefix("notetaker"), std::nullopt);
}

TEST(CalendarBotDatabase, matchesAsAWalkThroughTheRowsWould) {
    std::vector<std::string> pieces = {"@", ".", " ", "x",       "eu.", "bot",
                                       "é", "İ", "(", "MAILTO:", "ﬀ",   "\u00a0"};
    for (const auto& row : database.signatures())
        for (const auto* list :
             {&row.exactEmails, &row.emailDomains, &row.emailPatterns, &row.displayNamePatterns})
            pieces.insert(pieces.end(), list->begin(), list->end());
    std::mt19937 random(20260302);
    int matched = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        for (auto count = random() % 5; count > 0; --count) {
            text += random() % 3 == 0 ? "@" : "";
            auto piece = pieces[random() % pieces.size()];
            if (random() % 8 == 0)
                piece.front() =
                    static_cast<char>(std::toupper(static_cast<unsigned char>(piece.front())));
            text += random() % 8 == 0 ? piece.substr(0, random() % (piece.size() + 1)) : piece;
        }
        const auto email = shown(database.matchEmail(text));
        const auto name = shown(database.matchDisplayName(text));
        ASSERT_EQ(email, shown(linearEmail(text))) << text;
        ASSERT_EQ(name, shown(linearDisplayName(text))) << text;
        matched += email != "nothing" && name != "nothing";
    }
    EXPECT_GT(matched, 1000); // the random texts do match
}

} // namespace
} // namespace quorva
