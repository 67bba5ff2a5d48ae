// Tests detection in calendars: writes a calendar with one event to which a stand-in is invited,
// reads it, runs the calendar monitor over it with a catalogue of one row, and asks whether the
// desktop's calendar service answers.
#pragma once

#include "detectors/CalendarMonitor.h"
#include "drill/Drill.h"
#include "platform/DrillStandIns.h"
#include "platform/NoPreferences.h"

#include <optional>

namespace quorva {

class CalendarDrill final : public Drill {
public:
    /// The services must outlive the drill.
    CalendarDrill(MainLoop& loop, Log& log, Sha256 sha256, DrillStandIns& standIns);

private:
    void begin() override;
    [[nodiscard]] BrokenStep unfinished() override;
    void read(const CalendarStandIn& written);
    void check(const CalendarWindow& window);
    void look();
    void askService();
    void handle(CalendarServiceState service);

    Log& log;
    const Sha256 sha256;
    DrillStandIns& standIns;
    const CalendarBotDatabase catalogue;
    NoPreferences preferences;
    CalendarStore* store = nullptr;
    Subscription standIn; // outlives the users of its store
    std::optional<CalendarMonitor> monitor;
    Subscription reading;
    Subscription question;

    enum class Step { write, read, match, ask };
    Step step = Step::write;
};

} // namespace quorva
