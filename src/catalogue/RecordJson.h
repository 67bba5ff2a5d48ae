// The stored form of the two persisted records: JSON objects whose keys are the field names, in the
// order of declaration. Dates are numbers, the seconds since 2001-01-01 00:00:00 UTC. Absent fields
// are left out. Pure functions, callable from any thread.
#pragma once

#include "catalogue/Records.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace quorva {

[[nodiscard]] nlohmann::ordered_json toJson(const DetectionEvent& event);
[[nodiscard]] nlohmann::ordered_json toJson(const ObjectionRecord& record);

/// The record of a JSON object. Nothing when `json` is no object, a required key is missing, or a
/// value is of another type or out of its field's range; unknown keys are ignored.
[[nodiscard]] std::optional<DetectionEvent> detectionEventFromJson(const nlohmann::ordered_json&);
[[nodiscard]] std::optional<ObjectionRecord> objectionRecordFromJson(const nlohmann::ordered_json&);

} // namespace quorva
