#include "core/AllowList.h"

#include "platform/PreferenceKeys.h"

namespace quorva {

AllowList::AllowList(Preferences& preferences_) : preferences(preferences_) {
    const auto stored = read(preferences, preferenceKeys::allowedBotIds);
    allowedBotIds = std::set<std::string>(stored.begin(), stored.end());
}

bool AllowList::allows(const Finding& finding) const {
    const auto key = finding.allowKey();
    return !key.empty() && allowedBotIds->contains(key);
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
    preferences.set(preferenceKeys::allowedBotIds.name,
                    std::vector<std::string>(next.begin(), next.end()));
    allowedBotIds = std::move(next);
}

} // namespace quorva
