// The catalogue of note-taker, recorder and sales-intelligence applications that can run on the
// user's computer, and the rules that decide whether an application or a process is one of them.
// Immutable once built, safe to read from any thread; the operations have no side effects.
#pragma once

#include "catalogue/Enumerations.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorva {

/// One product and what it is recognised by. The three lists are stored in lower case.
struct BotSignature {
    /// Lower-cases the entries of the three lists and keeps their order. A path pattern is the name
    /// of one folder or file and holds no "/".
    BotSignature(std::string id, std::string name, BotCategory category, int baseConfidence,
                 std::vector<std::string> processNames, std::vector<std::string> bundleIdentifiers,
                 std::vector<std::string> pathPatterns);

    std::string id;   ///< short stable key, the signatureId of detections
    std::string name; ///< for people
    BotCategory category;
    int baseConfidence; ///< 0 to 100
    std::vector<std::string> processNames;
    std::vector<std::string> bundleIdentifiers;
    std::vector<std::string> pathPatterns;
};

/// A signature that matched, and how sure that is. Valid as long as its database.
struct BotMatch {
    const BotSignature& signature;
    int confidence; ///< 0 to 100
};

class BotSignatureDatabase {
public:
    /// A database of the given rows. Where several rows match, the first one wins.
    explicit BotSignatureDatabase(std::vector<BotSignature> signatures);

    BotSignatureDatabase(const BotSignatureDatabase&) = delete;
    BotSignatureDatabase& operator=(const BotSignatureDatabase&) = delete;

    /// The built-in catalogue, made on first use.
    [[nodiscard]] static const BotSignatureDatabase& shared();

    [[nodiscard]] const std::vector<BotSignature>& signatures() const { return rows; }

    /// Matches an application's identifier: equal to an entry or containing one, letter case aside.
    /// Confidence: the row's base and 10, at most 100. Nothing when no row matches.
    [[nodiscard]] std::optional<BotMatch> matchBundleIdentifier(std::string_view identifier) const;

    /// Matches an executable's path: one of its folders, or its last component, is a path pattern,
    /// letter case aside. Confidence: the row's base. Nothing when no row matches, and for a path
    /// that is excluded.
    [[nodiscard]] std::optional<BotMatch> matchProcessPath(std::string_view path) const;

    /// Matches the name of an application or of an executable file, letter case aside: equal to an
    /// entry (the row's base confidence), or its first occurrence in the name stands as a word of
    /// its own, with no letter or number on either side (5 less, at least 50). Nothing else
    /// matches.
    [[nodiscard]] std::optional<BotMatch> matchProcessName(std::string_view name) const;

    /// Whether `path`, letter case aside, is a system utility that shares its name with a product.
    [[nodiscard]] bool isExcludedProcessPath(std::string_view path) const;

private:
    /// One entry of a signature's list, in catalogue order.
    struct Entry {
        std::string text;
        std::size_t row;
        std::uint64_t letters; ///< the set of bytes that a text needs to hold this entry
    };

    std::vector<BotSignature> rows;
    std::unordered_set<std::string> excludedProcessPaths{"/usr/bin/rev"};
    std::vector<Entry> nameEntries;
    std::vector<Entry> identifierEntries;
    std::unordered_map<std::string_view, std::size_t> rowOfPathPattern;
};

} // namespace quorva
