// The command line of quorva-scan.
#pragma once

#include "base/Printable.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

struct ScanOptions {
    bool json = false;
    bool watch = false;
    bool selfTest = false;
    bool help = false;
    bool version = false;
    std::vector<std::string_view> sources; ///< their names, each once, in the order of all sources
    bool namesSources = false;             ///< the user has named them: consent to this one look

    [[nodiscard]] bool asksFor(std::string_view source) const;
};

struct ParsedOptions {
    std::optional<ScanOptions> options; ///< nothing when the command line is wrong
    std::string problem;                ///< what is wrong with it, as a sentence
};

/// Reads the arguments that follow the program's name. All sources when none is named. A pure
/// function.
[[nodiscard]] ParsedOptions parseScanOptions(const std::vector<std::string_view>& arguments);

/// How to use quorva-scan.
[[nodiscard]] Printable scanUsage();

} // namespace quorva
