#include "platform/linux/calendars/EdsSources.h"

#include "base/Text.h"
#include "platform/linux/calendars/CalendarProviders.h"
#include "platform/linux/glib/Handles.h"

#include <algorithm>
#include <array>
#include <libedataserver/libedataserver.h>
#include <map>
#include <optional>
#include <utility>

namespace quorva {
namespace {

using SourcePtr = GObjectPtr<ESource>;

std::string textOf(gchar* owned) {
    const GCharsPtr text(owned);
    return text ? text.get() : "";
}

std::vector<SourcePtr> adopt(GList* list) {
    std::vector<SourcePtr> sources;
    for (const auto* link = list; link; link = link->next)
        sources.emplace_back(static_cast<ESource*>(link->data));
    g_list_free(list);
    return sources;
}

template <typename Extension>
Extension* extension(ESource* source, const char* name) {
    return e_source_has_extension(source, name)
               ? static_cast<Extension*>(e_source_get_extension(source, name))
               : nullptr;
}

CalendarSourceType typeOf(std::string_view backend) {
    static constexpr std::array<std::pair<std::string_view, CalendarSourceType>, 7> types{{
        {"local", CalendarSourceType::local},
        {"ews", CalendarSourceType::exchange},
        {"microsoft365", CalendarSourceType::exchange},
        {"webcal", CalendarSourceType::subscribed},
        {"http", CalendarSourceType::subscribed},
        {"weather", CalendarSourceType::subscribed},
        {"contacts", CalendarSourceType::birthdays},
    }};
    for (const auto& [name, type] : types)
        if (name == backend)
            return type;
    return CalendarSourceType::calDAV;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// The provider, as far as the connection tells.
std::optional<CalendarProvider> providerOf(CalendarSourceType type, const EdsOrigin& origin) {
    if (type == CalendarSourceType::exchange)
        return CalendarProvider::exchange;
    if (type != CalendarSourceType::calDAV)
        return std::nullopt;
    const auto host = lowerCased(origin.host);
    if (origin.backend == "google" || contains(host, "google"))
        return CalendarProvider::google;
    if (host.ends_with("icloud.com"))
        return CalendarProvider::iCloud;
    return std::nullopt;
}

std::string backendOf(ESource* source, const char* extensionName) {
    auto* const backend = extension<ESourceBackend>(source, extensionName);
    return backend ? textOf(e_source_backend_dup_backend_name(backend)) : "";
}

std::string hostOf(ESource* source) {
    auto* const login = extension<ESourceAuthentication>(source, E_SOURCE_EXTENSION_AUTHENTICATION);
    return login ? textOf(e_source_authentication_dup_host(login)) : "";
}

/// The source itself, then its ancestors.
std::vector<SourcePtr> lineageOf(ESourceRegistry* registry, ESource* source) {
    std::vector<SourcePtr> lineage;
    lineage.emplace_back(E_SOURCE(g_object_ref(source)));
    constexpr std::size_t deepest = 8; // parents come from outside and may form a cycle
    while (lineage.size() < deepest) {
        const auto parent = textOf(e_source_dup_parent(lineage.back().get()));
        auto* const next =
            parent.empty() ? nullptr : e_source_registry_ref_source(registry, parent.c_str());
        if (!next)
            break;
        lineage.emplace_back(next);
    }
    return lineage;
}

ESourceCollection* collectionOf(ESource* source) {
    return extension<ESourceCollection>(source, E_SOURCE_EXTENSION_COLLECTION);
}

/// The topmost collection, or without one, the topmost ancestor.
ESource* accountOf(const std::vector<SourcePtr>& lineage) {
    const auto collection = std::find_if(lineage.rbegin(), lineage.rend(), [](const auto& source) {
        return collectionOf(source.get()) != nullptr;
    });
    return collection != lineage.rend() ? collection->get() : lineage.back().get();
}

/// A collection says how it is connected, unless it only holds mail. Without one, the calendar
/// does.
EdsOrigin originOf(ESource* account, ESource* calendar) {
    EdsOrigin origin{backendOf(account, E_SOURCE_EXTENSION_COLLECTION), hostOf(account)};
    if (origin.backend.empty() || origin.backend == "none")
        origin.backend = backendOf(calendar, E_SOURCE_EXTENSION_CALENDAR);
    if (origin.host.empty())
        origin.host = hostOf(calendar);
    return origin;
}

void addAddress(std::set<std::string>& addresses, const std::string& address) {
    if (contains(address, "@"))
        addresses.insert(lowerCased(address));
}

std::set<std::string> mailAddresses(ESourceRegistry* registry) {
    std::set<std::string> addresses;
    for (const auto& source :
         adopt(e_source_registry_list_sources(registry, E_SOURCE_EXTENSION_MAIL_IDENTITY))) {
        auto* const identity =
            extension<ESourceMailIdentity>(source.get(), E_SOURCE_EXTENSION_MAIL_IDENTITY);
        addAddress(addresses, textOf(e_source_mail_identity_dup_address(identity)));
        auto* const aliases = e_source_mail_identity_get_aliases_as_hash_table(identity);
        if (!aliases)
            continue;
        GHashTableIter position;
        gpointer alias = nullptr;
        g_hash_table_iter_init(&position, aliases);
        while (g_hash_table_iter_next(&position, &alias, nullptr))
            addAddress(addresses, static_cast<const gchar*>(alias));
        g_hash_table_destroy(aliases);
    }
    return addresses;
}

} // namespace

CalendarSource accountNamed(std::string_view name, const EdsOrigin& origin) {
    const auto type = typeOf(origin.backend);
    const auto named = providerNamed(name);
    CalendarSource account{std::string(name), type, providerOf(type, origin).value_or(named)};
    if (account.provider == named)
        return account;
    if (account.provider == CalendarProvider::google)
        account.title = "Google: " + account.title;
    else if (account.provider == CalendarProvider::iCloud)
        account.title = "iCloud: " + account.title;
    return account;
}

EdsSources readEdsSources(ESourceRegistry& registry) {
    EdsSources sources;
    std::set<std::pair<std::string, std::string>> listed;
    const auto addresses = mailAddresses(&registry);
    sources.ownAddresses = addresses;
    for (const auto& source :
         adopt(e_source_registry_list_enabled(&registry, E_SOURCE_EXTENSION_COLLECTION)))
        addAddress(sources.ownAddresses,
                   textOf(e_source_collection_dup_identity(collectionOf(source.get()))));
    for (const auto& source :
         adopt(e_source_registry_list_enabled(&registry, E_SOURCE_EXTENSION_CALENDAR))) {
        const auto lineage = lineageOf(&registry, source.get());
        auto* const account = accountOf(lineage);
        auto own = addresses;
        if (auto* const collection = collectionOf(account))
            addAddress(own, textOf(e_source_collection_dup_identity(collection)));
        sources.calendars.push_back({
            .identifier = edsIdentifier + textOf(e_source_dup_uid(source.get())) + "/",
            .name = textOf(e_source_dup_display_name(source.get())),
            .ownAddresses = std::move(own),
            .source = {E_SOURCE(g_object_ref(source.get())), g_object_unref},
        });
        auto named = accountNamed(textOf(e_source_dup_display_name(account)),
                                  originOf(account, source.get()));
        if (listed.emplace(textOf(e_source_dup_uid(account)), named.title).second)
            sources.accounts.push_back(std::move(named));
    }
    return sources;
}

} // namespace quorva
