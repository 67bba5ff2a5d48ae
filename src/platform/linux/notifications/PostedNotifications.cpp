#include "platform/linux/notifications/PostedNotifications.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace quorva {

PostedNotifications::PostedNotifications(std::uint64_t run_)
    : run(fmt::format("#{:016x}-", run_)) {}

std::string PostedNotifications::key(std::string_view action, const std::string& identifier) {
    return fmt::format("{}{}{}", action, run, entryOf(identifier).token);
}

std::optional<PostedNotifications::Press> PostedNotifications::pressOf(std::string_view key) const {
    const auto mark = key.rfind(run);
    if (mark == std::string_view::npos)
        return std::nullopt;
    const auto digits = key.substr(mark + run.size());
    std::uint64_t token = 0;
    const auto* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, token);
    if (error != std::errc() || last != end)
        return std::nullopt;
    const auto entry = std::ranges::lower_bound(entries, token, {}, &Entry::token);
    if (entry == entries.end() || entry->token != token)
        return std::nullopt;
    return Press{std::string(key.substr(0, mark)), entry->identifier};
}

void PostedNotifications::noteShown(const std::string& identifier, std::uint32_t number) {
    noteClosed(number); // the server may use a number again
    entryOf(identifier).number = number;
}

std::uint32_t PostedNotifications::numberOf(const std::string& identifier) const {
    const auto entry = std::ranges::find(entries, identifier, &Entry::identifier);
    return entry != entries.end() ? entry->number : 0;
}

bool PostedNotifications::isShown(std::uint32_t number) const {
    return number != 0 && std::ranges::find(entries, number, &Entry::number) != entries.end();
}

void PostedNotifications::noteClosed(std::uint32_t number) {
    const auto entry = std::ranges::find(entries, number, &Entry::number);
    if (entry != entries.end())
        entry->number = 0;
}

void PostedNotifications::invalidateNumbers() {
    for (auto& entry : entries)
        entry.number = 0;
}

PostedNotifications::Entry& PostedNotifications::entryOf(const std::string& identifier) {
    const auto known = std::ranges::find(entries, identifier, &Entry::identifier);
    if (known != entries.end())
        return *known;
    if (entries.size() >= capacity)
        entries.pop_front();
    return entries.emplace_back(Entry{.identifier = identifier, .token = ++lastToken});
}

} // namespace quorva
