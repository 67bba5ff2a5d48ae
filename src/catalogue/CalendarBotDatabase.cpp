#include "catalogue/CalendarBotDatabase.h"

#include "catalogue/CalendarBotSignatureTable.h"
#include "catalogue/SignatureTexts.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace quorva {
namespace {

/// The row's mailboxes as whole addresses.
std::vector<std::string> addressesOf(const CalendarBotSignatureRow& row) {
    auto addresses = entriesOf(row.mailboxes);
    for (auto& address : addresses)
        if (address.find('@') == std::string::npos)
            address.append("@").append(row.emailDomains.front());
    return addresses;
}

std::vector<CalendarBotSignature> builtInSignatures() {
    std::vector<CalendarBotSignature> signatures;
    for (const auto& row : tables::calendarBotSignatureTable)
        signatures.emplace_back(std::string(row.id), std::string(row.name), row.category,
                                addressesOf(row), entriesOf(row.emailDomains),
                                entriesOf(row.emailPatterns), entriesOf(row.displayNamePatterns),
                                row.baseConfidence);
    return signatures;
}

} // namespace

CalendarBotSignature::CalendarBotSignature(std::string id_, std::string name_,
                                           BotCategory category_,
                                           std::vector<std::string> exactEmails_,
                                           std::vector<std::string> emailDomains_,
                                           std::vector<std::string> emailPatterns_,
                                           std::vector<std::string> displayNamePatterns_,
                                           int baseConfidence_)
    : id(std::move(id_)),
      name(std::move(name_)),
      category(category_),
      exactEmails(lowerCasedEach(std::move(exactEmails_))),
      emailDomains(lowerCasedEach(std::move(emailDomains_))),
      emailPatterns(lowerCasedEach(std::move(emailPatterns_))),
      displayNamePatterns(lowerCasedEach(std::move(displayNamePatterns_))),
      baseConfidence(baseConfidence_) {}

CalendarBotDatabase::CalendarBotDatabase(std::vector<CalendarBotSignature> signatures,
                                         std::vector<std::string> genericBotPrefixes)
    : rows(std::move(signatures)), prefixes(lowerCasedEach(std::move(genericBotPrefixes))) {
    // A name that contains such a pattern matches the earlier one first.
    const auto containsEarlier = [this](const std::string& pattern) {
        return std::any_of(namePatterns.begin(), namePatterns.end(), [&](const Pattern& other) {
            return pattern.find(other.text) != std::string::npos;
        });
    };
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (const auto& address : rows[row].exactEmails)
            rowOfAddress.add(address, row);
        for (const auto& domain : rows[row].emailDomains)
            rowOfDomain.add(domain, row);
        for (const auto& pattern : rows[row].emailPatterns)
            mailboxPatterns.push_back({pattern, row, lettersOf(pattern)});
        for (const auto& pattern : rows[row].displayNamePatterns)
            if (!containsEarlier(pattern))
                namePatterns.push_back({pattern, row, lettersOf(pattern)});
    }
    for (const auto& prefix : prefixes)
        prefixStarts |= lettersOf(std::string_view(prefix).substr(0, 1));
}

std::size_t CalendarBotDatabase::RowOfText::EndsHash::operator()(std::string_view text) const {
    std::uint64_t ends[2] = {};
    constexpr auto size = sizeof ends[0];
    if (text.size() < size) {
        std::copy(text.begin(), text.end(), reinterpret_cast<char*>(ends));
    } else {
        std::memcpy(&ends[0], text.data(), size);
        std::memcpy(&ends[1], text.data() + text.size() - size, size);
    }
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
    const auto mixed = ((ends[0] * odd) ^ ends[1] ^ text.size()) * odd;
    return mixed ^ (mixed >> 32);
}

void CalendarBotDatabase::RowOfText::add(std::string_view text, std::size_t row) {
    rows.emplace(text, row); // keeps the first
    hashes.set(EndsHash()(text) % hashes.size());
}

std::size_t CalendarBotDatabase::RowOfText::find(std::string_view text) const {
    if (!hashes.test(EndsHash()(text) % hashes.size()))
        return none;
    const auto found = rows.find(text);
    return found == rows.end() ? none : found->second;
}

const CalendarBotDatabase& CalendarBotDatabase::shared() {
    static const CalendarBotDatabase database(
        builtInSignatures(),
        {std::begin(tables::genericBotPrefixTable), std::end(tables::genericBotPrefixTable)});
    return database;
}

std::optional<CalendarBotMatch> CalendarBotDatabase::matchEmail(std::string_view address) const {
    const std::string lower = lowerCased(address);
    const std::string_view email = trimmed(lower);
    if (const auto exact = rowOfAddress.find(email); exact != RowOfText::none) {
        const auto& signature = rows[exact];
        return CalendarBotMatch{signature, std::min(signature.baseConfidence + 10, 100)};
    }
    const auto at = email.find('@');
    if (at == std::string_view::npos)
        return std::nullopt;
    const auto match = matchDomain(email.substr(at + 1));
    return match ? match : matchMailbox(email.substr(0, at));
}

std::optional<CalendarBotMatch> CalendarBotDatabase::matchDomain(std::string_view domain) const {
    const std::size_t own = rowOfDomain.find(domain);
    std::size_t above = RowOfText::none;
    for (auto dot = domain.find('.'); dot != std::string_view::npos;
         dot = domain.find('.', dot + 1))
        above = std::min(above, rowOfDomain.find(domain.substr(dot + 1)));

    if (own <= above && own != RowOfText::none)
        return CalendarBotMatch{rows[own], rows[own].baseConfidence};
    if (above != RowOfText::none)
        return CalendarBotMatch{rows[above], std::max(rows[above].baseConfidence - 5, 50)};
    return std::nullopt;
}

std::optional<CalendarBotMatch> CalendarBotDatabase::matchMailbox(std::string_view local) const {
    for (const auto& pattern : mailboxPatterns)
        if (local.starts_with(pattern.text))
            return CalendarBotMatch{rows[pattern.row],
                                    std::max(rows[pattern.row].baseConfidence - 15, 50)};
    return std::nullopt;
}

std::optional<CalendarBotMatch> CalendarBotDatabase::matchDisplayName(std::string_view name) const {
    const std::string lower = lowerCased(name);
    const std::string_view text = trimmed(lower);
    const auto letters = lettersOf(text);
    for (const auto& pattern : namePatterns)
        if (mayHold(letters, pattern.letters) && text.find(pattern.text) != std::string_view::npos)
            return CalendarBotMatch{rows[pattern.row],
                                    std::max(rows[pattern.row].baseConfidence - 20, 40)};
    return std::nullopt;
}

std::optional<std::string_view>
CalendarBotDatabase::matchGenericPrefix(std::string_view address) const {
    const std::string lower = lowerCased(address);
    const auto at = lower.find('@');
    if (at == std::string::npos)
        return std::nullopt;
    const auto local = std::string_view(lower).substr(0, at);
    if (!mayHold(prefixStarts, lettersOf(local.substr(0, 1))))
        return std::nullopt;
    const auto found = std::find_if(prefixes.begin(), prefixes.end(), [local](const auto& prefix) {
        return local.starts_with(prefix);
    });
    return found == prefixes.end() ? std::nullopt : std::optional<std::string_view>(*found);
}

} // namespace quorva
