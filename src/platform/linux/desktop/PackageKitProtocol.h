// Decodes the messages of the package service; no I/O here (PackageKit 1.x, interfaces
// org.freedesktop.PackageKit and org.freedesktop.PackageKit.Transaction). Pure functions, callable
// from any thread.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace quorva::packageKit {

inline constexpr std::string_view packageName = "quorva";

/// The path of the transaction in a reply of CreateTransaction; nothing when the reply is of
/// another type.
[[nodiscard]] std::optional<std::string> decodeTransaction(GVariant* reply);

/// This program's package, installed or available.
struct OwnPackage {
    std::string version;
};

struct Fault {
    std::string text; ///< valid UTF-8, for people
};

struct End {
    bool isSuccess = false;
};

/// std::monostate: a signal without meaning here, such as one about another package.
using TransactionSignal = std::variant<std::monostate, OwnPackage, Fault, End>;

/// Decodes a signal of a transaction by its name and parameters.
[[nodiscard]] TransactionSignal decodeSignal(std::string_view signal, GVariant* parameters);

/// The version in "name;version;architecture;repository"; nothing when the name is not this
/// program's, or the version is empty.
[[nodiscard]] std::optional<std::string> versionOf(std::string_view packageIdentifier);

} // namespace quorva::packageKit
