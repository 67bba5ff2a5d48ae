// The stored form of the two persisted records: JSON objects whose keys are the field names, in the
// order of declaration. Dates are numbers of seconds since 2001-01-01 00:00:00 UTC. Absent fields
// are omitted. Pure functions, callable from any thread.
#pragma once

#include "catalogue/Records.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace quorva {

[[nodiscard]] nlohmann::ordered_json toJson(const DetectionEvent& event);
[[nodiscard]] nlohmann::ordered_json toJson(const ObjectionRecord& record);

/// Decodes a record. Nothing when `json` is not an object, a required key is missing, or a value
/// has the wrong type or is out of range; unknown keys are ignored.
[[nodiscard]] std::optional<DetectionEvent> detectionEventFromJson(const nlohmann::ordered_json&);
[[nodiscard]] std::optional<ObjectionRecord> objectionRecordFromJson(const nlohmann::ordered_json&);

} // namespace quorva
