#include "platform/linux/desktop/PackageKitProtocol.h"

#include "platform/linux/glib/Utf8.h"

#include <cstdint>
#include <utility>

namespace quorva::packageKit {
namespace {

constexpr std::uint32_t success = 1; // as PackageKit numbers outcomes

bool isOfType(GVariant* parameters, const char* type) {
    return g_variant_is_of_type(parameters, G_VARIANT_TYPE(type)) != FALSE;
}

std::string_view textAt(GVariant* parameters, gsize index) {
    const gchar* text = nullptr;
    g_variant_get_child(parameters, index, "&s", &text);
    return text;
}

} // namespace

std::optional<std::string> decodeTransaction(GVariant* reply) {
    if (!isOfType(reply, "(o)"))
        return std::nullopt;
    const gchar* path = nullptr;
    g_variant_get(reply, "(&o)", &path);
    return path;
}

TransactionSignal decodeSignal(std::string_view signal, GVariant* parameters) {
    if (signal == "Package" && isOfType(parameters, "(uss)")) {
        if (auto version = versionOf(textAt(parameters, 1)))
            return OwnPackage{std::move(*version)};
    } else if (signal == "ErrorCode" && isOfType(parameters, "(us)")) {
        return Fault{validUtf8(textAt(parameters, 1))};
    } else if (signal == "Finished" && isOfType(parameters, "(uu)")) {
        std::uint32_t outcome = 0;
        g_variant_get_child(parameters, 0, "u", &outcome);
        return End{outcome == success};
    }
    return {};
}

std::optional<std::string> versionOf(std::string_view packageIdentifier) {
    const auto nameEnd = packageIdentifier.find(';');
    if (nameEnd == std::string_view::npos || packageIdentifier.substr(0, nameEnd) != packageName)
        return std::nullopt;
    const auto rest = packageIdentifier.substr(nameEnd + 1);
    const auto version = rest.substr(0, rest.find(';'));
    return version.empty() ? std::nullopt : std::optional(validUtf8(version));
}

} // namespace quorva::packageKit
