// The command line of quorva-scan.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// Where quorva-scan can look.
enum class ScanSource { process, calendar, meeting };

/// The source's name on the command line and in the output.
[[nodiscard]] std::string_view nameOf(ScanSource source);

struct ScanOptions {
    bool json = false;
    bool watch = false;
    bool selfTest = false;
    bool help = false;
    bool version = false;
    std::vector<ScanSource> sources; ///< each once, in the order of the enumeration
    bool namesSources = false;       ///< the user has named them: consent to this one look

    [[nodiscard]] bool asksFor(ScanSource source) const;
};

struct ParsedOptions {
    std::optional<ScanOptions> options; ///< nothing when the command line is wrong
    std::string problem;                ///< what is wrong with it, as a sentence
};

/// Reads the arguments that follow the program's name. All sources when none is named. A pure
/// function.
[[nodiscard]] ParsedOptions parseScanOptions(const std::vector<std::string_view>& arguments);

/// How to use quorva-scan.
[[nodiscard]] std::string_view scanUsage();

} // namespace quorva
