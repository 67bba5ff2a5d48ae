// What one look has found, and how it is told: as JSON for programs, as a table for people. Plain
// values and pure functions.
#pragma once

#include "base/Printable.h"
#include "base/Time.h"
#include "sources/Finding.h"
#include "sources/SourceState.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace quorva {

struct SourceReport {
    std::string_view source; ///< its name
    SourceState::Kind state = SourceState::Kind::notAvailable;
    std::string detail; ///< one line: what was looked at, or why it was not, and what helps

    bool operator==(const SourceReport&) const = default;

    [[nodiscard]] bool isOk() const { return state == SourceState::Kind::ok; }
};

struct ScanReport {
    /// The findings of one kind.
    struct List {
        const FindingKind* kind;
        Findings findings;
    };

    std::vector<SourceReport> sources; ///< those asked for
    Time lookedAt;
    std::vector<List> lists; ///< one for each kind of each source, asked for or not

    /// 1 when something was found; else 3 when a source could not be looked at; else 0.
    [[nodiscard]] int exitStatus() const;

    /// The report as JSON, version 1: stable, new keys may be added.
    [[nodiscard]] nlohmann::ordered_json toJson() const;

    /// The report for people: an aligned table with the reason for each hit. Control characters in
    /// what was found are made visible.
    [[nodiscard]] Printable toText() const;

private:
    [[nodiscard]] std::size_t found() const;
};

/// One line of a watch, without a line feed.
[[nodiscard]] Printable watchLine(std::string_view event, std::string_view source,
                                  const Finding& finding, Time at);

/// The line of a watch that says that a source has lost sight of something.
[[nodiscard]] Printable sightLostLine(std::string_view source, std::string_view text, Time at);

/// JSON in one line, without a line feed. Bytes that are not UTF-8 become replacement characters,
/// and characters that could act on a terminal are escaped.
[[nodiscard]] Printable dump(const nlohmann::ordered_json& json);

} // namespace quorva
