#include "catalogue/CalendarBotDatabase.h"

#include "base/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace quorva {
namespace {

const CalendarBotDatabase& database = CalendarBotDatabase::shared();
using Result = std::optional<CalendarBotMatch>;

std::string shown(const Result& match) {
    return match ? match->signature.id + " " + std::to_string(match->confidence) : "nothing";
}

/// The rules as plain walks through the rows, to hold the indexed ones against.
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

TEST(CalendarBotDatabase, holdsTheEntriesOfEveryProduct) {
    // Addresses, domains, mailbox patterns, display name patterns.
    const std::vector<std::array<std::size_t, 4>> expected = {
        {5, 1, 3, 5}, {5, 1, 0, 4}, {5, 1, 0, 4}, {5, 1, 0, 3}, {4, 1, 0, 4}, {4, 2, 0, 5},
        {4, 2, 0, 5}, {5, 2, 0, 4}, {4, 1, 0, 5}, {4, 1, 0, 3}, {4, 1, 0, 4}, {4, 1, 0, 3},
        {3, 1, 0, 3}, {4, 1, 0, 3}, {4, 3, 0, 4}, {3, 1, 0, 3}, {3, 1, 0, 3}, {3, 1, 0, 3},
        {3, 2, 0, 3}, {4, 2, 0, 3}, {4, 2, 0, 3}, {3, 1, 0, 3}, {3, 1, 0, 3}, {3, 1, 0, 2},
        {2, 1, 0, 2}, {2, 1, 0, 2}, {2, 1, 0, 2}, {3, 1, 0, 3}, {3, 1, 0, 2}, {3, 1, 0, 3},
        {2, 1, 0, 2}, {2, 1, 0, 2}, {3, 2, 0, 2}, {2, 1, 0, 2}, {2, 1, 0, 2}, {2, 1, 0, 2},
    };
    std::vector<std::array<std::size_t, 4>> counts;
    std::map<BotCategory, int> categories;
    for (const auto& row : database.signatures()) {
        counts.push_back({row.exactEmails.size(), row.emailDomains.size(), row.emailPatterns.size(),
                          row.displayNamePatterns.size()});
        ++categories[row.category];
        EXPECT_TRUE(row.id.ends_with("-cal"));
        for (const auto& address : row.exactEmails) // each is at one of the row's own domains
            EXPECT_EQ(std::count(row.emailDomains.begin(), row.emailDomains.end(),
                                 address.substr(address.find('@') + 1)),
                      1)
                << address;
    }
    EXPECT_EQ(counts, expected);
    EXPECT_EQ(categories, (std::map<BotCategory, int>{{BotCategory::transcription, 25},
                                                      {BotCategory::sales, 9},
                                                      {BotCategory::recruiting, 2}}));
    EXPECT_EQ(database.genericBotPrefixes().size(), 19U);
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
    EXPECT_GT(matched, 1000); // the pieces do make up addresses and names
}

} // namespace
} // namespace quorva
