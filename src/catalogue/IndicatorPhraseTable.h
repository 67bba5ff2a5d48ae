// The texts of banners that announce a recording, a transcription or an assistant, one phrase a
// row, in lower case. If several rows match, the first one wins.
#pragma once

#include "catalogue/Enumerations.h"

#include <string_view>

namespace quorva {

struct IndicatorPhraseRow {
    std::string_view phrase;
    IndicatorType type;
    std::string_view onlyOnPlatform; ///< the platform's name; empty: any platform
};

namespace tables {

// clang-format off
inline constexpr IndicatorPhraseRow indicatorPhrases[] = {
    {"cloud recording",                   IndicatorType::cloudRecording, {}           },
    {"recording to the cloud",            IndicatorType::cloudRecording, {}           },
    {"recording to this computer",        IndicatorType::recording,      {}           },
    {"local recording",                   IndicatorType::recording,      {}           },
    {"recording in progress",             IndicatorType::recording,      {}           },
    {"this meeting is being recorded",    IndicatorType::recording,      {}           },
    {"recording has started",             IndicatorType::recording,      {}           },
    {"recording to the",                  IndicatorType::recording,      {}           },
    {"ai companion",                      IndicatorType::aiCompanion,    "Zoom"       },
    {"ai companion is active",            IndicatorType::aiCompanion,    "Zoom"       },
    {"ai companion active",               IndicatorType::aiCompanion,    "Zoom"       },
    {"meeting summary",                   IndicatorType::aiCompanion,    "Zoom"       },
    {"copilot",                           IndicatorType::copilot,        "Teams"      },
    {"copilot is active",                 IndicatorType::copilot,        "Teams"      },
    {"transcription has started",         IndicatorType::transcription,  "Teams"      },
    {"this meeting is being transcribed", IndicatorType::transcription,  {}           },
    {"transcription is on",               IndicatorType::transcription,  {}           },
    {"recording and transcription",       IndicatorType::recording,      {}           },
    {"gemini is taking notes",            IndicatorType::gemini,         "Google Meet"},
    {"gemini started taking notes",       IndicatorType::gemini,         "Google Meet"},
    {"gemini is active",                  IndicatorType::gemini,         "Google Meet"},
    {"this call is being recorded",       IndicatorType::recording,      {}           },
};
// clang-format on

/// Prefixes of the labels of controls that would start or stop what a banner announces.
inline constexpr std::string_view recordingControlPrefixes[] = {
    "start recording",
    "stop recording",
    "pause recording",
    "record meeting",
    "record this meeting",
    "start transcription",
    "stop transcription",
    "enable copilot",
    "disable copilot",
    "turn on",
    "turn off",
};

} // namespace tables
} // namespace quorva
