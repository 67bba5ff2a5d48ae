// Decoders of the replies and signals of the accessibility bus, which are untrusted. Pure
// functions, callable from any thread, without I/O; a value of an unexpected type counts as absent.
// Protocol: AT-SPI 2 (org.a11y.atspi), as at-spi2-core 2.46 describes it.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/glib/Handles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

namespace atspi {
inline constexpr const char* registryName = "org.a11y.atspi.Registry";
inline constexpr const char* registryPath = "/org/a11y/atspi/registry";
inline constexpr const char* registryInterface = "org.a11y.atspi.Registry";
inline constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";
inline constexpr const char* nullPath = "/org/a11y/atspi/null";
inline constexpr const char* accessible = "org.a11y.atspi.Accessible";
inline constexpr const char* application = "org.a11y.atspi.Application";
inline constexpr const char* text = "org.a11y.atspi.Text";
inline constexpr const char* component = "org.a11y.atspi.Component";
inline constexpr const char* document = "org.a11y.atspi.Document";
inline constexpr const char* properties = "org.freedesktop.DBus.Properties";
} // namespace atspi

/// The address of an element: its application's name on the bus, and its object path.
struct AtspiReference {
    std::string bus;
    std::string path;

    bool operator==(const AtspiReference&) const = default;
};

/// The numbers of those AT-SPI roles that are needed individually.
enum class AtspiRole : std::uint32_t {
    checkBox = 7,
    comboBox = 11,
    frame = 23,
    icon = 26,
    image = 27,
    internalFrame = 28,
    label = 29,
    menuItem = 35,
    pageTab = 37,
    passwordText = 40,
    pushButton = 43,
    radioButton = 44,
    separator = 50,
    spinButton = 52,
    text = 61,
    toggleButton = 62,
    autocomplete = 76,
    entry = 79,
    documentWeb = 95,
    staticText = 116,
};

/// The numbers of AtspiStateType that are needed.
enum class AtspiState : unsigned {
    selected = 23,
    showing = 25,
    visible = 30,
    managesDescendants = 31,
};

/// The toolkit that a program is made with, which decides what may be asked of it.
enum class AtspiToolkit {
    notAsked,
    unknown, ///< none of the others
    gtk,
    gecko,
    chromium,
};

/// Maps the number of an AT-SPI role.
[[nodiscard]] AccessibilityRole roleOf(std::uint32_t atspiRole);

/// Maps the value of the property "ToolkitName".
[[nodiscard]] AtspiToolkit toolkitOf(std::string_view name);

/// The properties of org.a11y.atspi.Accessible that are needed. Absent ones are empty; the number
/// of children is -1 when it is unknown.
struct AtspiDetails {
    std::string name;
    std::string description;
    std::string help;
    std::int32_t childCount = -1;

    bool operator==(const AtspiDetails&) const = default;
};

/// The longest text that is kept, in bytes. A longer one is cut at the end of a character.
inline constexpr std::size_t maxAtspiText = 4096;

/// Each decodes all parameters of a reply; null stands for a failed call.
[[nodiscard]] std::optional<std::uint32_t> decodeNumber(GVariant* reply);       ///< (u)
[[nodiscard]] std::optional<std::string> decodeText(GVariant* reply);           ///< (s)
[[nodiscard]] std::optional<std::string> decodeTextProperty(GVariant* reply);   ///< (v) of s
[[nodiscard]] std::optional<std::int32_t> decodeCountProperty(GVariant* reply); ///< (v) of i
[[nodiscard]] std::optional<bool> decodeTruth(GVariant* reply);                 ///< (v) of b
[[nodiscard]] std::optional<AtspiDetails> decodeDetails(GVariant* reply);       ///< (a{sv})

/// (a(so)): the first `most` references. Invalid ones among them are left out; one without a name
/// on the bus belongs to `owner`.
[[nodiscard]] std::optional<std::vector<AtspiReference>>
decodeReferences(GVariant* reply, const std::string& owner, std::size_t most);

/// ((so)), likewise.
[[nodiscard]] std::optional<AtspiReference> decodeReference(GVariant* reply,
                                                            const std::string& owner);

/// (au): whether a set of states contains one.
[[nodiscard]] bool hasState(GVariant* reply, AtspiState state);

/// What a signal reports about an element.
enum class AtspiChange {
    none, ///< nothing of interest here
    children,
    name, ///< or description
    text,
    visibility, ///< it is shown or hidden now
    document,   ///< another document has been loaded
    gone,
    windows, ///< a window has been opened or closed
};

/// A decoded signal: the element, and what is reported about it.
struct AtspiEvent {
    std::string path;
    AtspiChange change = AtspiChange::none;

    bool operator==(const AtspiEvent&) const = default;
};

/// Decodes a signal. `parameters` may be null.
[[nodiscard]] AtspiEvent decodeEvent(std::string_view path, std::string_view interface,
                                     std::string_view member, GVariant* parameters);

} // namespace quorva
