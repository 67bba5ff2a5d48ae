#include "platform/linux/accessibility/AtspiProtocol.h"

#include "platform/linux/glib/Utf8.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorva {
namespace {

constexpr std::string_view objectEvents = "org.a11y.atspi.Event.Object";
constexpr std::string_view documentEvents = "org.a11y.atspi.Event.Document";
constexpr std::string_view windowEvents = "org.a11y.atspi.Event.Window";

bool isOfType(GVariant* value, const char* type) {
    return value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE(type)) != FALSE;
}

/// The text of a string value, cut to `maxAtspiText`.
std::string textOf(GVariant* value) {
    gsize length = 0;
    const gchar* const bytes = g_variant_get_string(value, &length);
    std::string_view text(bytes, length);
    if (text.size() > maxAtspiText) {
        std::size_t end = maxAtspiText;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            --end;
        text = text.substr(0, end);
    }
    return validUtf8(text);
}

/// The value within a property's reply; null when it is of another type.
GVariantPtr propertyOf(GVariant* reply, const char* type) {
    if (!isOfType(reply, "(v)"))
        return nullptr;
    const GVariantPtr boxed(g_variant_get_child_value(reply, 0));
    GVariantPtr value(g_variant_get_variant(boxed.get()));
    return isOfType(value.get(), type) ? std::move(value) : nullptr;
}

std::optional<AtspiReference> referenceOf(GVariant* pair, const std::string& owner) {
    const gchar* bus = nullptr;
    const gchar* path = nullptr;
    g_variant_get(pair, "(&s&o)", &bus, &path);
    const bool isOwners = bus[0] == '\0';
    if (std::string_view(path) == atspi::nullPath || (!isOwners && g_dbus_is_name(bus) == FALSE))
        return std::nullopt;
    return AtspiReference{isOwners ? owner : bus, path};
}

AtspiChange objectChange(std::string_view member, std::string_view detail) {
    if (member == "ChildrenChanged" || member == "RowInserted" || member == "RowDeleted" ||
        member == "ModelChanged")
        return AtspiChange::children;
    if (member == "TextChanged")
        return AtspiChange::text;
    if (member == "PropertyChange" &&
        (detail == "accessible-name" || detail == "accessible-description"))
        return AtspiChange::name;
    if (member == "StateChanged" && detail == "showing")
        return AtspiChange::visibility;
    if (member == "StateChanged" && detail == "defunct")
        return AtspiChange::gone;
    return AtspiChange::none;
}

/// A signal's first parameter, which says what has changed, and the reference that the fourth may
/// contain.
struct EventDetails {
    std::string kind;
    std::optional<AtspiReference> other;
};

EventDetails detailsOf(GVariant* parameters) {
    constexpr std::size_t anyData = 3;
    EventDetails details;
    if (parameters == nullptr || g_variant_is_container(parameters) == FALSE)
        return details;
    const auto count = g_variant_n_children(parameters);
    if (count > 0) {
        const GVariantPtr kind(g_variant_get_child_value(parameters, 0));
        if (isOfType(kind.get(), "s"))
            details.kind = textOf(kind.get());
    }
    if (count > anyData) {
        const GVariantPtr boxed(g_variant_get_child_value(parameters, anyData));
        if (isOfType(boxed.get(), "v")) {
            const GVariantPtr value(g_variant_get_variant(boxed.get()));
            if (isOfType(value.get(), "(so)"))
                details.other = referenceOf(value.get(), "");
        }
    }
    return details;
}

} // namespace

AccessibilityRole roleOf(std::uint32_t atspiRole) {
    using enum AccessibilityRole;
    static constexpr std::array<std::pair<std::uint32_t, AccessibilityRole>, 36> roles{{
        {2, liveRegion},   // alert
        {9, colorWell},    // color chooser
        {16, window},      // dialog
        {20, group},       // filler
        {23, window},      // frame
        {26, image},       // icon
        {27, image},       // image
        {28, group},       // internal frame
        {29, staticText},  // label
        {31, list},        // list
        {34, menuBar},     // menu bar
        {37, tab},         // page tab
        {38, tabGroup},    // page tab list
        {39, group},       // panel
        {43, button},      // push button
        {48, scrollBar},   // scroll bar
        {49, scrollArea},  // scroll pane
        {50, splitter},    // separator
        {51, slider},      // slider
        {53, splitGroup},  // split pane
        {54, liveRegion},  // status bar
        {55, table},       // table
        {63, toolbar},     // tool bar
        {65, outline},     // tree
        {66, table},       // tree table
        {69, window},      // window
        {73, group},       // paragraph
        {74, ruler},       // ruler
        {85, group},       // section
        {87, group},       // form
        {95, webArea},     // document web
        {98, list},        // list box
        {99, group},       // grouping
        {101, liveRegion}, // notification
        {102, log},        // log
        {110, group},      // landmark
    }};
    if (atspiRole == 116) // static
        return staticText;
    const auto found = std::find_if(roles.begin(), roles.end(),
                                    [&](const auto& row) { return row.first == atspiRole; });
    return found != roles.end() ? found->second : other;
}

AtspiToolkit toolkitOf(std::string_view name) {
    if (name == "Gecko")
        return AtspiToolkit::gecko;
    if (name == "Chromium")
        return AtspiToolkit::chromium;
    if (name == "gtk" || name == "GTK" || name == "GAIL")
        return AtspiToolkit::gtk;
    return AtspiToolkit::unknown;
}

std::optional<std::uint32_t> decodeNumber(GVariant* reply) {
    if (!isOfType(reply, "(u)"))
        return std::nullopt;
    std::uint32_t number = 0;
    g_variant_get(reply, "(u)", &number);
    return number;
}

std::optional<std::string> decodeText(GVariant* reply) {
    if (!isOfType(reply, "(s)"))
        return std::nullopt;
    const GVariantPtr text(g_variant_get_child_value(reply, 0));
    return textOf(text.get());
}

std::optional<std::string> decodeTextProperty(GVariant* reply) {
    const auto text = propertyOf(reply, "s");
    return text ? std::optional(textOf(text.get())) : std::nullopt;
}

std::optional<std::int32_t> decodeCountProperty(GVariant* reply) {
    const auto count = propertyOf(reply, "i");
    return count ? std::optional(g_variant_get_int32(count.get())) : std::nullopt;
}

std::optional<bool> decodeTruth(GVariant* reply) {
    const auto truth = propertyOf(reply, "b");
    return truth ? std::optional(g_variant_get_boolean(truth.get()) != FALSE) : std::nullopt;
}

std::optional<AtspiDetails> decodeDetails(GVariant* reply) {
    if (!isOfType(reply, "(a{sv})"))
        return std::nullopt;
    const GVariantPtr values(g_variant_get_child_value(reply, 0));
    const auto text = [&](const char* key) {
        const GVariantPtr value(g_variant_lookup_value(values.get(), key, G_VARIANT_TYPE_STRING));
        return value ? textOf(value.get()) : std::string();
    };
    AtspiDetails details{text("Name"), text("Description"), text("HelpText"), -1};
    g_variant_lookup(values.get(), "ChildCount", "i", &details.childCount);
    return details;
}

std::optional<std::vector<AtspiReference>>
decodeReferences(GVariant* reply, const std::string& owner, std::size_t most) {
    if (!isOfType(reply, "(a(so))"))
        return std::nullopt;
    const GVariantPtr pairs(g_variant_get_child_value(reply, 0));
    const std::size_t count = std::min<std::size_t>(g_variant_n_children(pairs.get()), most);
    std::vector<AtspiReference> references;
    references.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const GVariantPtr pair(g_variant_get_child_value(pairs.get(), i));
        if (auto reference = referenceOf(pair.get(), owner))
            references.push_back(std::move(*reference));
    }
    return references;
}

std::optional<AtspiReference> decodeReference(GVariant* reply, const std::string& owner) {
    if (!isOfType(reply, "((so))"))
        return std::nullopt;
    const GVariantPtr pair(g_variant_get_child_value(reply, 0));
    return referenceOf(pair.get(), owner);
}

bool hasState(GVariant* reply, AtspiState state) {
    if (!isOfType(reply, "(au)"))
        return false;
    const GVariantPtr words(g_variant_get_child_value(reply, 0));
    if (g_variant_n_children(words.get()) == 0)
        return false;
    std::uint32_t first = 0;
    g_variant_get_child(words.get(), 0, "u", &first);
    return ((first >> static_cast<unsigned>(state)) & 1U) != 0;
}

/// A new parent of an element has one child more: some toolkits signal a new row only like this.
AtspiEvent decodeEvent(std::string_view path, std::string_view interface, std::string_view member,
                       GVariant* parameters) {
    AtspiEvent event{std::string(path), AtspiChange::none};
    if (interface == documentEvents) {
        event.change = AtspiChange::document;
    } else if (interface == windowEvents) {
        event.change = AtspiChange::windows;
    } else if (interface == objectEvents) {
        auto [kind, other] = detailsOf(parameters);
        if (member == "PropertyChange" && kind == "accessible-parent" && other)
            return {std::move(other->path), AtspiChange::children};
        event.change = objectChange(member, kind);
    }
    return event;
}

} // namespace quorva
