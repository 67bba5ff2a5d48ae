// The products that the user has chosen not to be alerted about.
#pragma once

#include "base/Published.h"
#include "platform/Preferences.h"
#include "sources/Finding.h"

#include <set>
#include <string>

namespace quorva {

/// Main thread only.
class AllowList {
public:
    /// Reads the list. The preferences must outlive it.
    explicit AllowList(Preferences& preferences);

    Published<std::set<std::string>, AllowList> allowedBotIds;

    /// Whether the finding's product is on the list.
    [[nodiscard]] bool allows(const Finding& finding) const;

    /// Adds or removes a key, and stores the list.
    void allow(const std::string& key);
    void remove(const std::string& key);

private:
    void store(std::set<std::string> next);

    Preferences& preferences;
};

} // namespace quorva
