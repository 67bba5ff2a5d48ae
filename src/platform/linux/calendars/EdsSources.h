// The accounts and calendars of Evolution Data Server, as plain values.
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

/// Begins the identifiers of all calendars of the service.
inline constexpr const char* edsIdentifier = "service/";

/// An enabled calendar of enabled accounts.
struct EdsCalendar {
    std::string identifier;
    std::string name;
    std::set<std::string> ownAddresses; ///< the user's, in lower case, without "mailto:"
    std::shared_ptr<_ESource> source;   ///< identifies it to the service's library; thread-safe

    bool operator==(const EdsCalendar&) const = default;
};

struct EdsSources {
    std::vector<CalendarSource> accounts; ///< each once, in the order of their calendars
    std::vector<EdsCalendar> calendars;
    std::set<std::string> ownAddresses; ///< the user's, of all accounts; as of a calendar

    bool operator==(const EdsSources&) const = default;
};

/// How, and to which server, an account or calendar is connected.
struct EdsOrigin {
    std::string backend; ///< the service's name for the kind of connection: "caldav", "google", …
    std::string host;    ///< of the server; may be empty
};

/// An account as it is shown. The provider follows from the connection, or else from the name. The
/// title of a Google or iCloud account names its provider even if the user's name for it does not:
/// "Google: anna@firm.example". Callable from any thread.
[[nodiscard]] CalendarSource accountNamed(std::string_view name, const EdsOrigin& origin);

/// Reads what `registry` currently holds. Only on the thread that `registry` belongs to.
[[nodiscard]] EdsSources readEdsSources(_ESourceRegistry& registry);

} // namespace quorva
