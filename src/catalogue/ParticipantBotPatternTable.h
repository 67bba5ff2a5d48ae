// The names of note-takers in lists of participants, one pattern a row, in lower-case ASCII. The
// longest pattern in a name wins; of equally long ones, the first row.
#pragma once

#include "catalogue/Enumerations.h"

#include <string_view>

namespace quorva {

struct ParticipantBotPatternRow {
    std::string_view pattern;
    std::string_view displayName;
    BotCategory category; ///< unknown: the pattern says what the bot does, not which product it is
};

namespace tables {

using enum BotCategory;

// clang-format off
inline constexpr ParticipantBotPatternRow participantBotPatterns[] = {
    {"otter.ai notetaker",     "Otter.ai",                  transcription},
    {"otter notetaker",        "Otter.ai",                  transcription},
    {"otter.ai",               "Otter.ai",                  transcription},
    {"otterpilot",             "Otter.ai",                  transcription},
    {"notetaker (otter",       "Otter.ai",                  transcription},
    {"'s notetaker (otter",    "Otter.ai",                  transcription},
    {"fireflies.ai notetaker", "Fireflies.ai",              transcription},
    {"fireflies notetaker",    "Fireflies.ai",              transcription},
    {"fireflies.ai fred",      "Fireflies.ai",              transcription},
    {"fred (fireflies",        "Fireflies.ai",              transcription},
    {"fireflies.ai",           "Fireflies.ai",              transcription},
    {"fathom notetaker",       "Fathom",                    transcription},
    {"fathom note",            "Fathom",                    transcription},
    {"fathom ai",              "Fathom",                    transcription},
    {"fathom bot",             "Fathom",                    transcription},
    {"fathom recorder",        "Fathom",                    transcription},
    {"read.ai",                "Read.ai",                   transcription},
    {"read ai",                "Read.ai",                   transcription},
    {"read notetaker",         "Read.ai",                   transcription},
    {"tl;dv",                  "tl;dv",                     transcription},
    {"tldv",                   "tl;dv",                     transcription},
    {"tl;dv notetaker",        "tl;dv",                     transcription},
    {"tldv notetaker",         "tl;dv",                     transcription},
    {"tl;dv recorder",         "tl;dv",                     transcription},
    {"grain notetaker",        "Grain",                     transcription},
    {"grain recorder",         "Grain",                     transcription},
    {"grain.com",              "Grain",                     transcription},
    {"grain bot",              "Grain",                     transcription},
    {"avoma assistant",        "Avoma",                     transcription},
    {"avoma notetaker",        "Avoma",                     transcription},
    {"avoma bot",              "Avoma",                     transcription},
    {"avoma",                  "Avoma",                     transcription},
    {"sembly",                 "Sembly.ai",                 transcription},
    {"sembly.ai",              "Sembly.ai",                 transcription},
    {"sembly notetaker",       "Sembly.ai",                 transcription},
    {"krisp notetaker",        "Krisp",                     transcription},
    {"krisp.ai",               "Krisp",                     transcription},
    {"krisp bot",              "Krisp",                     transcription},
    {"meetgeek",               "MeetGeek",                  transcription},
    {"meetgeek notetaker",     "MeetGeek",                  transcription},
    {"supernormal",            "Supernormal",               transcription},
    {"supernormal notetaker",  "Supernormal",               transcription},
    {"fellow notetaker",       "Fellow.app",                transcription},
    {"fellow bot",             "Fellow.app",                transcription},
    {"fellow.app",             "Fellow.app",                transcription},
    {"notta notetaker",        "Notta.ai",                  transcription},
    {"notta.ai",               "Notta.ai",                  transcription},
    {"notta bot",              "Notta.ai",                  transcription},
    {"circleback",             "Circleback",                transcription},
    {"circleback.ai",          "Circleback",                transcription},
    {"circleback notetaker",   "Circleback",                transcription},
    {"wudpecker",              "Wudpecker",                 transcription},
    {"wudpecker notetaker",    "Wudpecker",                 transcription},
    {"colibri.ai",             "Colibri.ai",                transcription},
    {"colibri notetaker",      "Colibri.ai",                transcription},
    {"clearword",              "Clearword",                 transcription},
    {"clearword notetaker",    "Clearword",                 transcription},
    {"nyota",                  "Nyota",                     transcription},
    {"nyota notetaker",        "Nyota",                     transcription},
    {"claap notetaker",        "Claap",                     transcription},
    {"claap recorder",         "Claap",                     transcription},
    {"rewatch notetaker",      "Rewatch",                   transcription},
    {"rewatch recorder",       "Rewatch",                   transcription},
    {"bluedot notetaker",      "Bluedot",                   transcription},
    {"bluedot recorder",       "Bluedot",                   transcription},
    {"jamie notetaker",        "Jamie AI",                  transcription},
    {"meetjamie",              "Jamie AI",                  transcription},
    {"jamie ai",               "Jamie AI",                  transcription},
    {"tactiq notetaker",       "Tactiq",                    transcription},
    {"tactiq recorder",        "Tactiq",                    transcription},
    {"screenapp notetaker",    "ScreenApp",                 transcription},
    {"screenapp recorder",     "ScreenApp",                 transcription},
    {"vowel notetaker",        "Vowel",                     transcription},
    {"vowel recorder",         "Vowel",                     transcription},
    {"recall.ai",              "Recall.ai (Bot Provider)",  transcription},
    {"recall notetaker",       "Recall.ai (Bot Provider)",  transcription},
    {"meeting notetaker",      "Recall.ai (Bot Provider)",  transcription},
    {"happy scribe",           "Happy Scribe",              transcription},
    {"happyscribe",            "Happy Scribe",              transcription},
    {"sonix notetaker",        "Sonix",                     transcription},
    {"sonix recorder",         "Sonix",                     transcription},
    {"airgram notetaker",      "Airgram",                   transcription},
    {"airgram recorder",       "Airgram",                   transcription},
    {"verbit notetaker",       "Verbit",                    transcription},
    {"verbit captioner",       "Verbit",                    transcription},
    {"gong.io",                "Gong.io",                   sales        },
    {"gong notetaker",         "Gong.io",                   sales        },
    {"gong recorder",          "Gong.io",                   sales        },
    {"gong assistant",         "Gong.io",                   sales        },
    {"chorus.ai",              "Chorus.ai",                 sales        },
    {"chorus notetaker",       "Chorus.ai",                 sales        },
    {"chorus recorder",        "Chorus.ai",                 sales        },
    {"clari copilot",          "Clari Copilot",             sales        },
    {"clari notetaker",        "Clari Copilot",             sales        },
    {"wingman notetaker",      "Clari Copilot",             sales        },
    {"salesloft notetaker",    "Salesloft",                 sales        },
    {"salesloft recorder",     "Salesloft",                 sales        },
    {"outreach kaia",          "Outreach Kaia",             sales        },
    {"kaia (outreach",         "Outreach Kaia",             sales        },
    {"outreach notetaker",     "Outreach Kaia",             sales        },
    {"revenue.io",             "Revenue.io",                sales        },
    {"revenue notetaker",      "Revenue.io",                sales        },
    {"jiminny notetaker",      "Jiminny",                   sales        },
    {"jiminny recorder",       "Jiminny",                   sales        },
    {"modjo notetaker",        "Modjo",                     sales        },
    {"modjo recorder",         "Modjo",                     sales        },
    {"sybill notetaker",       "Sybill",                    sales        },
    {"sybill recorder",        "Sybill",                    sales        },
    {"sybill ai",              "Sybill",                    sales        },
    {"brighthire",             "BrightHire",                recruiting   },
    {"brighthire notetaker",   "BrightHire",                recruiting   },
    {"brighthire recorder",    "BrightHire",                recruiting   },
    {"metaview",               "Metaview",                  recruiting   },
    {"metaview notetaker",     "Metaview",                  recruiting   },
    {"pillar notetaker",       "Pillar",                    recruiting   },
    {"pillar recorder",        "Pillar",                    recruiting   },
    {"zoom ai companion",      "Zoom AI Companion",         platform     },
    {"ai companion",           "Zoom AI Companion",         platform     },
    {"copilot",                "Teams Copilot",             platform     },
    {"microsoft copilot",      "Teams Copilot",             platform     },
    {"teams copilot",          "Teams Copilot",             platform     },
    {"google gemini",          "Google Gemini",             platform     },
    {"gemini notetaker",       "Google Gemini",             platform     },
    {"gemini is taking notes", "Google Gemini",             platform     },
    {"gemini note-taker",      "Google Gemini",             platform     },
    {"notetaker",              "Unknown Notetaker",         unknown      },
    {"note taker",             "Unknown Notetaker",         unknown      },
    {"meeting recorder",       "Unknown Recorder",          unknown      },
    {"recording bot",          "Unknown Recorder",          unknown      },
    {"meeting bot",            "Unknown Bot",               unknown      },
    {"ai assistant",           "Unknown AI Assistant",      unknown      },
    {"transcription bot",      "Unknown Transcription Bot", unknown      },
};
// clang-format on

/// Words for what a bot does. A name that contains one after another word is a bot of an unknown
/// product.
inline constexpr std::string_view genericBotWords[] = {
    "notetaker",   "note taker",   "meeting recorder",  "recording bot",
    "meeting bot", "ai assistant", "transcription bot",
};

/// Prefixes of the labels of buttons and menus, with the blank that ends a word.
inline constexpr std::string_view uiActionPrefixes[] = {
    "add ",    "invite ",  "remove ", "mute ", "unmute ", "settings", "preferences", "configure",
    "enable ", "disable ", "start ",  "stop ", "end ",    "leave ",   "share ",      "pin ",
    "unpin ",  "hide ",    "show ",   "view ", "open ",   "close ",   "click ",      "tap ",
};

} // namespace tables
} // namespace quorva
