#include "scan/Scan.h"

#include <utility>

namespace quorva {

Scan::Scan(const ScanOptions& options_, Platform& platform)
    : options(options_), loop(platform.loop), sources(platform, preferences) {}

std::vector<Source*> Scan::asked() const {
    std::vector<Source*> asked;
    for (auto* const source : sources)
        if (options.asksFor(source->profile.name))
            asked.push_back(source);
    return asked;
}

Task Scan::afterAll(Task done) {
    auto waiting = std::make_shared<std::size_t>(asked().size());
    return [this, waiting, done = std::move(done)] {
        if (--*waiting == 0)
            loop.post(lifetime.guard(done));
    };
}

void Scan::look(std::function<void(ScanReport)> done) {
    const auto finish = afterAll([this, done = std::move(done)] {
        ScanReport report{.sources = reports(), .lookedAt = loop.now(), .lists = {}};
        for (const auto* const source : sources)
            for (const auto* const kind : source->profile.kinds) {
                auto& list = report.lists.emplace_back(ScanReport::List{kind, {}});
                for (const auto& finding : *source->findings)
                    if (&finding->kind() == kind)
                        list.findings.push_back(finding);
            }
        done(std::move(report));
    });
    for (auto* const source : asked())
        source->lookOnce(finish);
}

void Scan::watch(Print print, std::function<void(std::vector<SourceReport>)> done) {
    const auto printer = [this, &print](std::string_view event, const Source& source) {
        return [this, print, event, name = source.profile.name](const FindingPtr& finding) {
            print(watchLine(event, name, *finding, loop.now()));
        };
    };
    const auto finish = afterAll([this, done = std::move(done)] { done(reports()); });
    for (auto* const source : asked()) {
        source->onAppeared = printer("appeared", *source);
        source->onGone = printer("disappeared", *source);
        source->onSightLost = [this, print, name = source->profile.name](const std::string& text) {
            print(sightLostLine(name, text, loop.now()));
        };
        source->setOn(true);
        source->awaitFirstLook(finish);
    }
}

std::vector<SourceReport> Scan::reports() const {
    std::vector<SourceReport> reports;
    for (const auto* const source : asked())
        reports.push_back({source->profile.name, source->state->kind, source->detail()});
    return reports;
}

} // namespace quorva
