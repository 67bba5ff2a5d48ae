#include "core/AllowList.h"

#include "catalogue/BotSignatureDatabase.h"
#include "catalogue/CalendarBotDatabase.h"

#include <algorithm>

namespace quorva {
namespace {

constexpr std::string_view allowedKey = "allowedBotIds";

template <typename Rows>
std::string nameIn(const Rows& rows, const std::string& id) {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const auto& signature) { return signature.id == id; });
    return row != rows.end() ? row->name : std::string();
}

} // namespace

AllowList::AllowList(Preferences& preferences_) : preferences(preferences_) {
    if (const auto stored = preferences.read<std::vector<std::string>>(allowedKey).value)
        allowedBotIds = std::set<std::string>(stored->begin(), stored->end());
}

bool AllowList::allows(const std::string& key) const {
    return allowedBotIds->contains(key);
}

void AllowList::allow(const std::string& key) {
    auto next = *allowedBotIds;
    next.insert(key);
    store(std::move(next));
}

void AllowList::remove(const std::string& key) {
    auto next = *allowedBotIds;
    next.erase(key);
    store(std::move(next));
}

void AllowList::store(std::set<std::string> next) {
    preferences.set(allowedKey, std::vector<std::string>(next.begin(), next.end()));
    allowedBotIds = std::move(next);
}

std::string AllowList::describe(const std::string& key) {
    if (const auto name = nameIn(BotSignatureDatabase::shared().signatures(), key); !name.empty())
        return name + ", on this computer";
    if (const auto name = nameIn(CalendarBotDatabase::shared().signatures(), key); !name.empty())
        return name + ", in invitations";
    return key;
}

} // namespace quorva
