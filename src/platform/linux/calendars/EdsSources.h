// The accounts and calendars that Evolution Data Server knows, as plain values.
#pragma once

#include "platform/CalendarStore.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// NOLINTBEGIN(bugprone-reserved-identifier): the library's names
struct _ESource;
struct _ESourceRegistry;
// NOLINTEND(bugprone-reserved-identifier)

namespace quorva {

/// A calendar that is switched on, as are the accounts it belongs to.
struct EdsCalendar {
    std::string identifier;
    std::string name;
    std::set<std::string> ownAddresses; ///< the user's, in lower case, without "mailto:"
    std::shared_ptr<_ESource> source;   ///< what the service's library opens it by; thread-safe

    bool operator==(const EdsCalendar&) const = default;
};

struct EdsSources {
    std::vector<CalendarSource> accounts; ///< each once, in the order of their calendars
    std::vector<EdsCalendar> calendars;

    bool operator==(const EdsSources&) const = default;
};

/// What a calendar or an account is connected by and to.
struct EdsOrigin {
    std::string backend; ///< the service's name for the kind of connection: "caldav", "google", …
    std::string host;    ///< of the server; empty for none
};

/// An account as it is shown. The provider follows from the connection, or else from the name. The
/// title of a Google or iCloud account names its provider even if the user's name for it does not:
/// "Google: anna@firm.example". Callable from any thread.
[[nodiscard]] CalendarSource accountNamed(std::string_view name, const EdsOrigin& origin);

/// What `registry` knows at present. The thread that `registry` belongs to only.
[[nodiscard]] EdsSources readEdsSources(_ESourceRegistry& registry);

} // namespace quorva
