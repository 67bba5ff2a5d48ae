// What the package service says, read from its messages: no I/O here (PackageKit 1.x, interfaces
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

/// The path of the transaction that CreateTransaction has made; nothing where the reply is of
/// another type.
[[nodiscard]] std::optional<std::string> decodeTransaction(GVariant* reply);

/// This program's package, installed or to be had.
struct OwnPackage {
    std::string version;
};

struct Fault {
    std::string text;
};

struct End {
    bool isSuccess = false;
};

/// Nothing: a signal that says nothing here, such as one about another package.
using Said = std::variant<std::monostate, OwnPackage, Fault, End>;

/// What a transaction says by a signal.
[[nodiscard]] Said decodeSignal(std::string_view signal, GVariant* parameters);

/// The version in "name;version;architecture;repository" when the name is this program's.
[[nodiscard]] std::optional<std::string> versionOf(std::string_view packageIdentifier);

} // namespace quorva::packageKit
