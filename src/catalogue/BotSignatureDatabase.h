// The catalogue of note-takers, recorders and sales-intelligence assistants that run on the user's
// computer, and the rules that match an application or a process against it. Immutable after
// construction; callable from any thread.
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

/// A product and its patterns. The three lists are in lower case.
struct BotSignature {
    /// Lower-cases the entries of the three lists and keeps their order. A path pattern is the name
    /// of one folder or file, without "/".
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

/// A match and its confidence. Valid as long as its database.
struct BotMatch {
    const BotSignature& signature;
    int confidence; ///< 0 to 100
};

class BotSignatureDatabase {
public:
    /// If several rows match, the first one wins.
    explicit BotSignatureDatabase(std::vector<BotSignature> signatures);

    BotSignatureDatabase(const BotSignatureDatabase&) = delete;
    BotSignatureDatabase& operator=(const BotSignatureDatabase&) = delete;

    /// The built-in catalogue, constructed on first use.
    [[nodiscard]] static const BotSignatureDatabase& shared();

    [[nodiscard]] const std::vector<BotSignature>& signatures() const { return rows; }

    /// Matches an application's identifier against entries that it equals or contains, ignoring
    /// case. Confidence: the row's base plus 10, at most 100. Nothing when no row matches.
    [[nodiscard]] std::optional<BotMatch> matchBundleIdentifier(std::string_view identifier) const;

    /// Matches an executable's path: one of its folders, or its last component, equals a path
    /// pattern, ignoring case. Confidence: the row's base. Nothing when no row matches or the path
    /// is excluded.
    [[nodiscard]] std::optional<BotMatch> matchProcessPath(std::string_view path) const;

    /// Matches the name of an application or of an executable file, ignoring case. Either it equals
    /// an entry (the row's base confidence), or the entry's first occurrence in it is a whole word,
    /// without a letter or number on either side (5 less, at least 50). Nothing otherwise.
    [[nodiscard]] std::optional<BotMatch> matchProcessName(std::string_view name) const;

    /// Whether `path`, ignoring case, is a system utility that has the name of a product.
    [[nodiscard]] bool isExcludedProcessPath(std::string_view path) const;

private:
    /// An entry of a signature's list; entries are in catalogue order.
    struct Entry {
        std::string text;
        std::size_t row;
        std::uint64_t letters; ///< bytes that a text must have to contain this entry
    };

    std::vector<BotSignature> rows;
    std::unordered_set<std::string> excludedProcessPaths{"/usr/bin/rev"};
    std::vector<Entry> nameEntries;
    std::vector<Entry> identifierEntries;
    std::unordered_map<std::string_view, std::size_t> rowOfPathPattern;
};

} // namespace quorva
