// The name under which other programs know this one: its desktop entry, icon, bus name and log
// fields. The names of installed files and what stands in them follow from it
// (packaging/CMakeLists.txt reads it from here).
#pragma once

namespace quorva {

inline constexpr const char* applicationId = "com.veltran.QuorvaApp";

/// The application's object on the bus, by the rule of the Desktop Entry Specification 1.5 ("D-Bus
/// Activation").
inline constexpr const char* applicationObjectPath = "/com/veltran/QuorvaApp";

} // namespace quorva
