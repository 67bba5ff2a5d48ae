#include "catalogue/BotSignatureDatabase.h"

#include "catalogue/BotSignatureTable.h"
#include "catalogue/SignatureTexts.h"

#include <algorithm>

namespace quorva {
namespace {

std::vector<BotSignature> builtInSignatures() {
    std::vector<BotSignature> signatures;
    for (const auto& row : tables::botSignatureTable)
        signatures.emplace_back(std::string(row.id), std::string(row.name), row.category,
                                row.baseConfidence, entriesOf(row.processNames),
                                entriesOf(row.bundleIdentifiers), entriesOf(row.pathPatterns));
    return signatures;
}

} // namespace

BotSignature::BotSignature(std::string id_, std::string name_, BotCategory category_,
                           int baseConfidence_, std::vector<std::string> processNames_,
                           std::vector<std::string> bundleIdentifiers_,
                           std::vector<std::string> pathPatterns_)
    : id(std::move(id_)),
      name(std::move(name_)),
      category(category_),
      baseConfidence(baseConfidence_),
      processNames(lowerCasedEach(std::move(processNames_))),
      bundleIdentifiers(lowerCasedEach(std::move(bundleIdentifiers_))),
      pathPatterns(lowerCasedEach(std::move(pathPatterns_))) {}

BotSignatureDatabase::BotSignatureDatabase(std::vector<BotSignature> signatures)
    : rows(std::move(signatures)) {
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (const auto& name : rows[row].processNames)
            nameEntries.push_back({name, row, lettersOf(name)});
        for (const auto& identifier : rows[row].bundleIdentifiers)
            identifierEntries.push_back({identifier, row, lettersOf(identifier)});
        for (const auto& pattern : rows[row].pathPatterns)
            rowOfPathPattern.emplace(pattern, row); // keeps the first row's
    }
}

const BotSignatureDatabase& BotSignatureDatabase::shared() {
    static const BotSignatureDatabase database(builtInSignatures());
    return database;
}

std::optional<BotMatch>
BotSignatureDatabase::matchBundleIdentifier(std::string_view identifier) const {
    const std::string lower = lowerCased(identifier);
    const auto letters = lettersOf(lower);
    for (const auto& entry : identifierEntries)
        if (mayHold(letters, entry.letters) && lower.find(entry.text) != std::string::npos)
            return BotMatch{rows[entry.row], std::min(rows[entry.row].baseConfidence + 10, 100)};
    return std::nullopt;
}

std::optional<BotMatch> BotSignatureDatabase::matchProcessPath(std::string_view path) const {
    const std::string lower = lowerCased(path);
    if (excludedProcessPaths.contains(lower))
        return std::nullopt;

    std::size_t best = rows.size();
    const auto consider = [&](std::string_view component) {
        const auto found = rowOfPathPattern.find(component);
        if (found != rowOfPathPattern.end())
            best = std::min(best, found->second);
    };
    consider(lastPathComponent(lower));
    for (auto slash = lower.find('/'); slash != std::string::npos;) {
        const auto next = lower.find('/', slash + 1);
        consider(std::string_view(lower).substr(slash + 1, next - slash - 1));
        slash = next;
    }
    if (best == rows.size())
        return std::nullopt;
    return BotMatch{rows[best], rows[best].baseConfidence};
}

std::optional<BotMatch> BotSignatureDatabase::matchProcessName(std::string_view name) const {
    const std::string lower = lowerCased(name);
    const std::string_view text = lower;
    const auto letters = lettersOf(text);
    for (const auto& entry : nameEntries) {
        if (!mayHold(letters, entry.letters))
            continue;
        const auto& signature = rows[entry.row];
        if (text == entry.text)
            return BotMatch{signature, signature.baseConfidence};
        const auto at = text.find(entry.text);
        if (at == std::string_view::npos || endsInLetterOrNumber(text.substr(0, at)) ||
            continuesWord(text.substr(at + entry.text.size())))
            continue;
        return BotMatch{signature, std::max(signature.baseConfidence - 5, 50)};
    }
    return std::nullopt;
}

bool BotSignatureDatabase::isExcludedProcessPath(std::string_view path) const {
    return excludedProcessPaths.contains(lowerCased(path));
}

} // namespace quorva
