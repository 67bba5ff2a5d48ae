// The catalogue of bots that join meetings as invited attendees, and the rules that decide whether
// an attendee's address or display name is one of them.
// Immutable once built, safe to read from any thread; the operations have no side effects.
#pragma once

#include "catalogue/Enumerations.h"

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva {

/// One product and what its bots are recognised by. The four lists are stored in lower case.
struct CalendarBotSignature {
    /// Lower-cases the entries of the four lists and keeps their order.
    CalendarBotSignature(std::string id, std::string name, BotCategory category,
                         std::vector<std::string> exactEmails,
                         std::vector<std::string> emailDomains,
                         std::vector<std::string> emailPatterns,
                         std::vector<std::string> displayNamePatterns, int baseConfidence);

    std::string id;   ///< stable key, the signatureId of detections
    std::string name; ///< for people
    BotCategory category;
    std::vector<std::string> exactEmails;         ///< whole addresses
    std::vector<std::string> emailDomains;        ///< those below them included
    std::vector<std::string> emailPatterns;       ///< beginnings of what stands before the "@"
    std::vector<std::string> displayNamePatterns; ///< texts within a display name
    int baseConfidence;                           ///< 0 to 100
};

/// A signature that matched, and how sure that is. Valid as long as its database.
struct CalendarBotMatch {
    const CalendarBotSignature& signature;
    int confidence; ///< 0 to 100
};

class CalendarBotDatabase {
public:
    /// A database of the given rows and prefixes. Where several match, the first one wins.
    CalendarBotDatabase(std::vector<CalendarBotSignature> signatures,
                        std::vector<std::string> genericBotPrefixes);

    CalendarBotDatabase(const CalendarBotDatabase&) = delete;
    CalendarBotDatabase& operator=(const CalendarBotDatabase&) = delete;

    /// The built-in catalogue, made on first use.
    [[nodiscard]] static const CalendarBotDatabase& shared();

    [[nodiscard]] const std::vector<CalendarBotSignature>& signatures() const { return rows; }
    [[nodiscard]] const std::vector<std::string>& genericBotPrefixes() const { return prefixes; }

    /// Matches an attendee's address, letter case and white space around it aside. An exact address
    /// of any row (its base confidence and 10, at most 100) comes before a domain of any row (the
    /// base; 5 less, at least 50, for one below it), and that before a mailbox that begins with a
    /// pattern (15 less, at least 50). Nothing when no row matches.
    [[nodiscard]] std::optional<CalendarBotMatch> matchEmail(std::string_view address) const;

    /// Matches an attendee's display name: it contains a pattern, letter case aside (the row's base
    /// confidence less 20, at least 40). Nothing when no row matches.
    [[nodiscard]] std::optional<CalendarBotMatch> matchDisplayName(std::string_view name) const;

    /// The generic prefix that the mailbox of `address` begins with, letter case aside. Nothing
    /// when there is none, or no "@". Valid as long as the database.
    [[nodiscard]] std::optional<std::string_view>
    matchGenericPrefix(std::string_view address) const;

private:
    /// One display name pattern, in catalogue order.
    struct Pattern {
        std::string_view text;
        std::size_t row;
        std::uint64_t letters; ///< the set of bytes that a name needs to hold this pattern
    };
    /// The first row of each text. Most texts asked for are in no row: their lengths and ends,
    /// which cost less than reading them through, tell most of these.
    class RowOfText {
    public:
        static constexpr std::size_t none = static_cast<std::size_t>(-1);

        void add(std::string_view text, std::size_t row);
        [[nodiscard]] std::size_t find(std::string_view text) const; ///< none: greater than any row

    private:
        struct EndsHash {
            std::size_t operator()(std::string_view text) const;
        };
        std::unordered_map<std::string_view, std::size_t, EndsHash> rows;
        std::bitset<4096> hashes;
    };

    [[nodiscard]] std::optional<CalendarBotMatch> matchDomain(std::string_view domain) const;
    [[nodiscard]] std::optional<CalendarBotMatch> matchMailbox(std::string_view local) const;

    const std::vector<CalendarBotSignature> rows; // the members below point into it
    const std::vector<std::string> prefixes;
    RowOfText rowOfAddress;
    RowOfText rowOfDomain;
    std::vector<Pattern> mailboxPatterns;
    std::vector<Pattern> namePatterns; ///< without those that hold one before them
    std::uint64_t prefixStarts = 0;    ///< the set of bytes that the generic prefixes begin with
};

} // namespace quorva
