// The catalogue of bots that join meetings as invited attendees, and the rules that match an
// attendee's address or display name against it. Immutable after construction; callable from any
// thread.
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

/// A product and the patterns of its bots. The four lists are in lower case.
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
    std::vector<std::string> emailDomains;        ///< with their subdomains
    std::vector<std::string> emailPatterns;       ///< prefixes of the part before the "@"
    std::vector<std::string> displayNamePatterns; ///< parts of a display name
    int baseConfidence;                           ///< 0 to 100
};

/// A match and its confidence. Valid as long as its database.
struct CalendarBotMatch {
    const CalendarBotSignature& signature;
    int confidence; ///< 0 to 100
};

class CalendarBotDatabase {
public:
    /// If several rows or prefixes match, the first one wins.
    CalendarBotDatabase(std::vector<CalendarBotSignature> signatures,
                        std::vector<std::string> genericBotPrefixes);

    CalendarBotDatabase(const CalendarBotDatabase&) = delete;
    CalendarBotDatabase& operator=(const CalendarBotDatabase&) = delete;

    /// The built-in catalogue, constructed on first use.
    [[nodiscard]] static const CalendarBotDatabase& shared();

    [[nodiscard]] const std::vector<CalendarBotSignature>& signatures() const { return rows; }
    [[nodiscard]] const std::vector<std::string>& genericBotPrefixes() const { return prefixes; }

    /// Matches an attendee's address, ignoring case and white space around it. An exact address in
    /// any row comes first (the row's base confidence plus 10, at most 100), then a domain in any
    /// row (the base; 5 less, at least 50, for a subdomain), then a mailbox that begins with a
    /// pattern (15 less, at least 50). Nothing when no row matches.
    [[nodiscard]] std::optional<CalendarBotMatch> matchEmail(std::string_view address) const;

    /// Matches a display name that contains a pattern, ignoring case (the row's base confidence
    /// minus 20, at least 40). Nothing when no row matches.
    [[nodiscard]] std::optional<CalendarBotMatch> matchDisplayName(std::string_view name) const;

    /// The generic prefix of the mailbox of `address`, ignoring case. Nothing when there is none,
    /// or when the address has no "@". Valid as long as the database.
    [[nodiscard]] std::optional<std::string_view>
    matchGenericPrefix(std::string_view address) const;

private:
    /// A pattern; patterns are in catalogue order.
    struct Pattern {
        std::string_view text;
        std::size_t row;
        std::uint64_t letters; ///< bytes that a name must have to contain this pattern
    };
    /// The first row of each text. Most lookups find nothing; the length and the ends of a text,
    /// which are cheaper than a full comparison, reject most of them.
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
    std::vector<Pattern> namePatterns; ///< without those that contain an earlier one
    std::uint64_t prefixStarts = 0;    ///< first bytes of the generic prefixes
};

} // namespace quorva
