#include "scan/SelfTestReport.h"

#include "sources/Sources.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorva {
namespace {

using Json = nlohmann::ordered_json;

std::string_view nameOf(DrillLink link) {
    switch (link) {
    case DrillLink::process:
        return processProfile.name;
    case DrillLink::calendar:
        return invitationProfile.name;
    case DrillLink::meeting:
        break;
    }
    return meetingProfile.name;
}

std::string_view statusOf(const DrillFinding& finding) {
    return finding.isBroken() ? "broken" : "ok";
}

} // namespace

std::vector<DrillLink> linksOf(const std::vector<std::string_view>& sources) {
    std::vector<DrillLink> links;
    for (const auto source : sources)
        for (const auto link : {DrillLink::process, DrillLink::calendar, DrillLink::meeting})
            if (nameOf(link) == source)
                links.push_back(link);
    return links;
}

Printable describeLink(const DrillFinding& finding) {
    auto text = Printable::format("  {:<8}  {:<6}  ", nameOf(finding.link), statusOf(finding));
    for (const auto& step : finding.passed)
        text += printable(step) + " … ";
    if (finding.isBroken())
        return text +
               Printable::format("could not {}: {}\n", finding.broken.step, finding.broken.problem);
    return text + Printable::format("ok in {:.1f} s\n", finding.took.count());
}

Printable describeSelfTest(const std::vector<DrillFinding>& findings) {
    std::string broken;
    for (const auto& finding : findings)
        if (finding.isBroken())
            broken += fmt::format("{}{}", broken.empty() ? "" : ", ", nameOf(finding.link));
    return broken.empty() ? Printable("Every link works.\n")
                          : Printable::format("Broken: {}.\n", broken);
}

Json selfTestToJson(const std::vector<DrillFinding>& findings) {
    Json links = Json::array();
    for (const auto& finding : findings) {
        Json broken;
        if (finding.isBroken())
            broken = {{"step", finding.broken.step}, {"problem", finding.broken.problem}};
        links.push_back({{"link", nameOf(finding.link)},
                         {"status", statusOf(finding)},
                         {"passed", finding.passed},
                         {"broken", std::move(broken)},
                         {"seconds", finding.took.count()}});
    }
    return {{"version", 1},
            {"verdict", selfTestStatus(findings) == 0 ? "ok" : "broken"},
            {"links", std::move(links)}};
}

int selfTestStatus(const std::vector<DrillFinding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const DrillFinding& finding) { return finding.isBroken(); })
               ? 3
               : 0;
}

} // namespace quorva
