#include "scan/ScanOptions.h"

#include "sources/Sources.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace quorva {
namespace {

/// "process, calendar and meeting", with this before the last one.
std::string everySource(std::string_view beforeLast) {
    std::string names;
    for (const auto* const profile : sourceProfiles) {
        const bool isLast = profile == sourceProfiles.back();
        names += fmt::format("{}{}",
                             names.empty() ? ""
                             : isLast      ? beforeLast
                                           : ", ",
                             profile->name);
    }
    return names;
}

bool isSource(std::string_view name) {
    return std::any_of(sourceProfiles.begin(), sourceProfiles.end(),
                       [&](const SourceProfile* profile) { return profile->name == name; });
}

ParsedOptions wrong(std::string problem) {
    return {.options = std::nullopt, .problem = std::move(problem)};
}

} // namespace

bool ScanOptions::asksFor(std::string_view source) const {
    return std::find(sources.begin(), sources.end(), source) != sources.end();
}

ParsedOptions parseScanOptions(const std::vector<std::string_view>& arguments) {
    ScanOptions options;
    std::set<std::string_view> named;
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
            return wrong("--source needs the name of a source: " + everySource(" or "));
        else
            return wrong(fmt::format("there is no option \"{}\"", *at));

        if (!source)
            continue;
        if (!isSource(*source))
            return wrong(fmt::format("there is no source \"{}\": the sources are {}", *source,
                                     everySource(" and ")));
        named.insert(*source);
        options.namesSources = true;
    }
    if (options.selfTest && options.watch)
        return wrong("--self-test and --watch don't go together");
    for (const auto* const profile : sourceProfiles)
        if (named.empty() || named.contains(profile->name))
            options.sources.push_back(profile->name);
    return {.options = std::move(options), .problem = {}};
}

Printable scanUsage() {
    Printable names;
    for (const auto* const profile : sourceProfiles)
        names += Printable::format("{}{}", names == Printable() ? "" : "|", profile->name);
    return Printable::format(R"(Usage: quorva-scan [--json] [--watch | --self-test] [--source {}]...

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
)",
                             names);
}

} // namespace quorva
