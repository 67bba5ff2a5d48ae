// The whole program but for its main file, over a computer in memory: what the user interface is
// looked at and tried on.
#pragma once

#include "core/AppDelegate.h"
#include "core/CalendarConsentDialog.h"
#include "core/Updates.h"
#include "support/AccessibleElements.h"
#include "support/FakeComputer.h"
#include "ui/windows/UserInterface.h"

#include <QCoreApplication>
#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace quorva {

struct Stage {
    FakeComputer computer;
    FakeUpdateService updateService;
    AppState state{computer.services};
    AppDelegate delegate{state, computer.loop};
    CalendarConsentDialog consent{computer.preferences};
    Updates updates{computer.loop, computer.preferences, updateService};
    UserInterface ui{state, delegate, consent, updates, computer.loop};

    Stage() { settle(); }

    /// Runs what is to be done now, of the program and of Qt.
    void settle() {
        for (int round = 0; round < 3; ++round) {
            computer.loop.runPosted();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    /// Starts a program; the catalogue decides whether it is a product.
    void run(const std::string& executable) {
        computer.processTable.run(nextProcess++, executable);
        look();
    }
    /// Shows a text in the window of a meeting, such as a participant or a banner. The platform is
    /// Zoom, Webex, or anything else for Google Meet in a browser.
    void showInMeeting(const std::string& text, const std::string& platform = "Zoom") {
        texts[platform].push_back(text);
        computer.applications.running.clear();
        ProcessIdentifier process = 5000;
        for (const auto& [name, shown] : texts) {
            const bool isZoom = name == "Zoom";
            const bool isBrowser = !isZoom && name != "Webex";
            computer.applications.running.push_back({isZoom      ? "us.zoom.xos"
                                                     : isBrowser ? "org.mozilla.firefox"
                                                                 : "com.webex.meetingmanager",
                                                     name, std::nullopt, process});
            computer.accessibility.applications[process++].windows = {
                {.title = name + " Meeting",
                 .tree = isBrowser ? browserWindow("https://meet.google.com/abc", shown)
                                   : meetingWindow(shown)}};
        }
        look();
    }
    /// Invites an address to a meeting that begins after so long.
    void invite(const std::string& address, std::chrono::minutes until) {
        const auto start = computer.loop.now() + until;
        computer.calendars.events.push_back({.eventIdentifier = address,
                                             .title = "Case review",
                                             .start = start,
                                             .end = start + std::chrono::hours(1),
                                             .attendees = {{std::nullopt, "mailto:" + address}},
                                             .calendarName = "Work"});
        look();
    }
    /// Has every source look at what there is now.
    void look() {
        state.refreshAllScans();
        settle();
        state.refreshAllScans(); // windows are there to be looked at once they have been asked for
        settle();
    }
    void permit(bool hasCalendars, bool hasAccessibility, bool hasAccount = true) {
        computer.calendars.status =
            hasCalendars ? CalendarAuthorization::fullAccess : CalendarAuthorization::denied;
        computer.calendars.accounts.clear();
        if (hasAccount)
            computer.calendars.accounts = {
                {"ann@gmail.com", CalendarSourceType::calDAV, CalendarProvider::google}};
        computer.accessibility.isOn = hasAccessibility;
        state.permissions.refresh();
        settle();
    }

private:
    ProcessIdentifier nextProcess = 100;
    std::map<std::string, std::vector<std::string>> texts; ///< by platform
};

} // namespace quorva
