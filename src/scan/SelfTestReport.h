// What a self-test has come to, as quorva-scan tells it: lines for people, JSON for programs. Pure
// functions.
#pragma once

#include "drill/SelfTest.h"
#include "scan/ScanOptions.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace quorva {

/// The links of these sources.
[[nodiscard]] std::vector<DrillLink> linksOf(const std::vector<std::string_view>& sources);

/// A line about one link, with a line feed: its steps, the broken one with what helps.
[[nodiscard]] Printable describeLink(const DrillFinding& finding);

/// A line about all of them, with a line feed: which are broken.
[[nodiscard]] Printable describeSelfTest(const std::vector<DrillFinding>& findings);

/// The findings as JSON, version 1: stable, new keys may be added.
[[nodiscard]] nlohmann::ordered_json selfTestToJson(const std::vector<DrillFinding>& findings);

/// 0 when each link works, 3 when one is broken.
[[nodiscard]] int selfTestStatus(const std::vector<DrillFinding>& findings);

} // namespace quorva
