// Files objections to being recorded: copies the statement to the clipboard, speaks a short one,
// and adds the objection to a log that is kept as evidence.
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

/// What an objection is about, as far as the caller knows.
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
    /// Whether the confirmation is shown: for 2.5 seconds after an objection, and again when it
    /// turns out later that the objection was not spoken.
    Published<bool, Objections> showingObjectionToast{false};
    /// What the confirmation says: what became of the statement, as far as it is known.
    Published<std::string, Objections> toastText;

    void selectTemplate(ObjectionTemplate which) { selectedTemplate = which; }

    /// Speaks the short statement, interrupting one that is being spoken, copies the full
    /// statement, and logs the objection. Always true; failures of clipboard and speech are
    /// reported elsewhere.
    bool fileObjection(const ObjectionOccasion& occasion);

private:
    void speakObjection(ObjectionTemplate which);
    void followSpeech();
    void showToast();

    MainLoop& loop;
    Clipboard& clipboard;
    SpeechSynthesizer& speechSynthesizer;
    std::deque<Timer> toastTimers;
    std::optional<Time> filedAt; ///< the last objection
    Subscription speechProblem;
    Lifetime lifetime; // last: goes first
};

/// The English voice of the highest quality, and of equal ones the first in the service's order.
/// Null if there is none.
[[nodiscard]] const SpeechVoice* bestEnglishVoice(const std::vector<SpeechVoice>& installed);

} // namespace quorva
