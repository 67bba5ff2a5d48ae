// The cost of finding the bots among the attendees of many events, relative to a walk through the
// catalogue's rows for each attendee.
#include "Measuring.h"
#include "base/Text.h"
#include "catalogue/CalendarBotDatabase.h"

#include <algorithm>
#include <array>
#include <random>

namespace quorva::bench {
namespace {

constexpr int rounds = 200;
constexpr double matchingBound = 5.0; // ms
constexpr std::size_t events = 200;
constexpr std::size_t attendeesOfEvent = 50;
constexpr std::size_t attendeesOfBot = 1'000; ///< one bot per this many attendees

struct Attendee {
    std::string email; ///< in lower case, as the monitor passes it
    std::string name;  ///< empty: none
};

struct Word {
    const char* shown;
    const char* inMailbox;
};
constexpr std::array<Word, 12> firstNames{{{"Ada", "ada"},
                                           {"Jürgen", "juergen"},
                                           {"Benjamin", "benjamin"},
                                           {"Noémie", "noemie"},
                                           {"Priya", "priya"},
                                           {"Mary Jane", "mary.jane"},
                                           {"Łukasz", "lukasz"},
                                           {"Samantha", "samantha"},
                                           {"Tom", "tom"},
                                           {"Иван", "ivan"},
                                           {"Charlotte", "charlotte"},
                                           {"健", "ken"}}};
constexpr std::array<Word, 10> lastNames{{{"Lovelace", "lovelace"},
                                          {"Müller", "mueller"},
                                          {"Robertson", "robertson"},
                                          {"Okonkwo", "okonkwo"},
                                          {"García Márquez", "garcia"},
                                          {"Chen", "chen"},
                                          {"Andersen (Procurement)", "andersen"},
                                          {"Bothwell", "rbothwell"},
                                          {"Ivanova", "ivanova"},
                                          {"Smith", "smith"}}};
constexpr std::array domains{"example.com",     "firm.example",        "gmail.com", "outlook.com",
                             "cs.univ.example", "eu.corp.example.com", "web.de"};
const std::array<Attendee, 4> bots{{{"pilot@otter.ai", "Otter Pilot"},
                                    {"notetaker@firm.example", ""},
                                    {"meetings@firm.example", "Fathom Notetaker"},
                                    {"someone@eu.otter.ai", "Anna"}}};

/// The attendees of all events, in order; the same in every run.
std::vector<Attendee> makeAttendees() {
    std::mt19937 random(20260328); // NOLINT(*-msc51-cpp)
    const auto oneOf = [&random](const auto& list) { return list[random() % list.size()]; };
    std::vector<Attendee> attendees;
    for (std::size_t i = 0; i < events * attendeesOfEvent; ++i) {
        const auto first = oneOf(firstNames);
        const auto last = oneOf(lastNames);
        const bool isNamed = random() % 8 != 0;
        attendees.push_back(
            {std::string(first.inMailbox) + "." + last.inMailbox + "@" + oneOf(domains),
             isNamed ? std::string(first.shown) + " " + last.shown : ""});
        if (i % attendeesOfBot == attendeesOfBot - 1)
            attendees.back() = bots[i / attendeesOfBot % bots.size()];
    }
    return attendees;
}

/// What the attendee matched: a row or a generic prefix. Empty if the attendee is not a bot.
using Finding = std::string_view;

/// In the monitor's order.
Finding lookUp(const CalendarBotDatabase& database, const Attendee& attendee) {
    if (const auto match = database.matchEmail(attendee.email))
        return match->signature.id;
    if (const auto prefix = database.matchGenericPrefix(attendee.email))
        return *prefix;
    if (!attendee.name.empty())
        if (const auto match = database.matchDisplayName(attendee.name))
            return match->signature.id;
    return {};
}

/// The reference: the same rules, row by row.
Finding walk(const CalendarBotDatabase& database, const Attendee& attendee) {
    const auto lowerEmail = lowerCased(attendee.email);
    const auto lowerName = lowerCased(attendee.name);
    const auto email = trimmed(lowerEmail);
    const auto name = trimmed(lowerName);
    const auto at = email.find('@');
    const auto local = email.substr(0, at);
    const auto domain = email.substr(at + 1);
    Finding found;
    const auto anyRow = [&](auto list, auto fits) {
        for (const auto& row : database.signatures())
            if (std::any_of((row.*list).begin(), (row.*list).end(), fits)) {
                found = row.id;
                return true;
            }
        return false;
    };
    using Row = CalendarBotSignature;
    if (anyRow(&Row::exactEmails, [&](const auto& exact) { return email == exact; }) ||
        anyRow(&Row::emailDomains,
               [&](const auto& own) {
                   return domain.ends_with(own) && (domain.size() == own.size() ||
                                                    domain[domain.size() - own.size() - 1] == '.');
               }) ||
        anyRow(&Row::emailPatterns, [&](const auto& start) { return local.starts_with(start); }))
        return found;
    for (const auto& prefix : database.genericBotPrefixes())
        if (local.starts_with(prefix))
            return prefix;
    anyRow(&Row::displayNamePatterns,
           [&](const auto& part) { return name.find(part) != std::string_view::npos; });
    return found;
}

void matching(benchmark::State& state, Summary& summary) {
    const auto& database = CalendarBotDatabase::shared();
    const auto attendees = makeAttendees();
    const auto timed = [&](auto match) {
        return cpuSecondsOf([&] {
            for (const auto& attendee : attendees)
                benchmark::DoNotOptimize(match(database, attendee));
        });
    };
    std::size_t found = 0;
    for (const auto& attendee : attendees) {
        const auto finding = lookUp(database, attendee);
        found += finding.empty() ? 0 : 1;
        if (finding != walk(database, attendee))
            return state.SkipWithError("the walk has found something else");
    }
    if (found != attendees.size() / attendeesOfBot)
        return state.SkipWithError("not the bots and only these were found");

    const auto compared = compare(
        state, [&] { return timed(walk); }, [&] { return timed(lookUp); });
    state.counters["ratio"] = compared.ratio;
    summary.add("matching 50 attendees of 200 events, CPU", compared.candidate * 1e3, "ms",
                matchingBound);
    summary.add("matching 50 attendees of 200 events / walk through the rows", compared.ratio, "x");
}

} // namespace

void registerMatchingBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("matching",
                                 [&](benchmark::State& state) { matching(state, summary); })
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace quorva::bench
