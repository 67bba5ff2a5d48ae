// Says in words what the program cannot do at the moment: which part of the desktop is missing, and
// what that costs. Without this, an indicator that cannot look would be mistaken for "all clear".
#pragma once

#include "base/Lifetime.h"
#include "base/Published.h"
#include "core/Settings.h"
#include "platform/Log.h"
#include "platform/NotificationCenter.h"
#include "platform/SpeechSynthesizer.h"
#include "sources/Sources.h"

#include <string>
#include <vector>

namespace quorva {

struct Limitation {
    std::string part; ///< what it is about: a source's name, "notifications", "speech" or "tray"
    std::string text; ///< one line: what is missing, and what that costs

    bool operator==(const Limitation&) const = default;
};

/// Follows what can be limited. Main thread only.
class Limitations {
public:
    /// Everything must outlive this.
    Limitations(MainLoop& loop, Log& log, NotificationCenter& notifications,
                SpeechSynthesizer& speech, const Settings& settings, const Sources& sources);

    /// One for each part that is wanted but limited: the sources in their order, then the rest. A
    /// part that is switched off is not limited, nor is one whose state is not known yet. Changes
    /// are logged.
    Published<std::vector<Limitation>, Limitations> all;

    /// Says whether the desktop shows the tray icon.
    void setTray(bool isShown);

private:
    void schedule();
    void update();
    [[nodiscard]] std::vector<Limitation> current() const;

    MainLoop& loop;
    Log& log;
    NotificationCenter& notifications;
    SpeechSynthesizer& speech;
    const Settings& settings;
    const Sources& sources;
    bool hasTray = true;
    bool isUpdateDue = false;
    std::vector<Subscription> subscriptions;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
