#include "scan/ScanOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace quorva {
namespace {

constexpr std::array everySource{ScanSource::process, ScanSource::calendar, ScanSource::meeting};

std::optional<ScanSource> sourceNamed(std::string_view name) {
    const auto* const found =
        std::find_if(everySource.begin(), everySource.end(),
                     [&](ScanSource source) { return nameOf(source) == name; });
    return found == everySource.end() ? std::nullopt : std::optional(*found);
}

ParsedOptions wrong(std::string problem) {
    return {.options = std::nullopt, .problem = std::move(problem)};
}

} // namespace

std::string_view nameOf(ScanSource source) {
    switch (source) {
    case ScanSource::process:
        return "process";
    case ScanSource::calendar:
        return "calendar";
    case ScanSource::meeting:
        break;
    }
    return "meeting";
}

bool ScanOptions::asksFor(ScanSource source) const {
    return std::find(sources.begin(), sources.end(), source) != sources.end();
}

ParsedOptions parseScanOptions(const std::vector<std::string_view>& arguments) {
    ScanOptions options;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        constexpr std::string_view sourceOption = "--source";
        std::optional<std::string_view> source;
        if (*at == "--json")
            options.json = true;
        else if (*at == "--watch")
            options.watch = true;
        else if (*at == "--self-test")
            options.selfTest = true;
        else if (*at == "--help" || *at == "-h")
            options.help = true;
        else if (*at == "--version")
            options.version = true;
        else if (at->starts_with("--source="))
            source = at->substr(sourceOption.size() + 1);
        else if (*at == sourceOption && at + 1 != arguments.end())
            source = *++at;
        else if (*at == sourceOption)
            return wrong("--source needs the name of a source: process, calendar or meeting");
        else
            return wrong(fmt::format("there is no option \"{}\"", *at));

        if (!source)
            continue;
        const auto known = sourceNamed(*source);
        if (!known)
            return wrong(fmt::format(
                "there is no source \"{}\": the sources are process, calendar and meeting",
                *source));
        options.sources.push_back(*known);
        options.namesSources = true;
    }
    if (options.selfTest && options.watch)
        return wrong("--self-test and --watch don't go together");
    if (options.sources.empty())
        options.sources.assign(everySource.begin(), everySource.end());
    std::sort(options.sources.begin(), options.sources.end());
    options.sources.erase(std::unique(options.sources.begin(), options.sources.end()),
                          options.sources.end());
    return {.options = std::move(options), .problem = {}};
}

std::string_view scanUsage() {
    return R"(Usage: quorva-scan [--json] [--watch | --self-test] [--source process|calendar|meeting]...

Looks once for AI note-takers, recorders and sales assistants, and says what it found.

  --source NAME  look there only; may be given more than once (default: everywhere). Calendars
                 are read only when they are named.
  --json         print one JSON object instead of a table
  --watch        keep looking, and print a line of JSON for each product that appears or disappears,
                 until interrupted
  --self-test    look for nothing real: send a harmless stand-in through each source to a detection,
                 and say which link is broken, if one is. Calendars of yours are not read.
  --version      print the version
  --help         print this

Exit status: 0 looked everywhere asked, nothing found; 1 something found; 2 wrong use or internal
error; 3 nothing found, but a source could not be looked at. Of a self-test: 0 every link works;
3 one is broken or could not be tried.
)";
}

} // namespace quorva
