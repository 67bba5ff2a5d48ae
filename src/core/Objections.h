// Objecting to being recorded: the statement goes to the clipboard and to the loudspeaker, and the
// objection into a log that stands later.
#pragma once

#include "base/Lifetime.h"
#include "core/ObjectionTexts.h"
#include "core/RecordLog.h"
#include "platform/Clipboard.h"
#include "platform/SpeechSynthesizer.h"

#include <deque>
#include <optional>
#include <string>

namespace quorva {

/// What an objection is made to, as far as the one who makes it knows.
struct ObjectionOccasion {
    std::optional<ObjectionTemplate> objectionTemplate; ///< absent: the selected one
    std::optional<std::string> botName;
    std::optional<std::string> meetingContext;
    std::optional<DetectionSource> source;
};

/// Main thread only.
class Objections {
public:
    /// The services must outlive this. The log is empty until it is loaded.
    Objections(MainLoop& loop, Preferences& preferences, Log& log, Clipboard& clipboard,
               SpeechSynthesizer& speechSynthesizer);

    /// Newest first, at most 200.
    RecordLog<ObjectionRecord> objectionLog;
    /// The template used when an occasion names none. Not stored.
    Published<ObjectionTemplate, Objections> selectedTemplate{ObjectionTemplate::california};
    /// Whether the confirmation shows: for 2.5 seconds after an objection.
    Published<bool, Objections> showingObjectionToast{false};

    void selectTemplate(ObjectionTemplate which) { selectedTemplate = which; }

    /// Speaks the short statement, cutting off one being spoken, copies the full one, and logs the
    /// objection. True: it has been made. Faults of clipboard and speech do not show here.
    bool fileObjection(const ObjectionOccasion& occasion);

private:
    void speakObjection(ObjectionTemplate which);

    MainLoop& loop;
    Clipboard& clipboard;
    SpeechSynthesizer& speechSynthesizer;
    std::deque<Timer> toastTimers;
    Lifetime lifetime; // last: goes first
};

/// The best English voice: the highest quality, the first of these in the service's order; none
/// where there is none.
[[nodiscard]] const SpeechVoice* bestEnglishVoice(const std::vector<SpeechVoice>& installed);

} // namespace quorva
