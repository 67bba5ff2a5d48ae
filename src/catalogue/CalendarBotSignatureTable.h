// The catalogue of bots that are invited to meetings, one product a row. If several rows match, the
// first one wins. Lists are padded with empty texts.
#pragma once

#include "catalogue/Enumerations.h"

#include <array>
#include <string_view>

namespace quorva {

struct CalendarBotSignatureRow {
    std::string_view id;
    std::string_view name;
    BotCategory category;
    int baseConfidence;
    std::array<std::string_view, 3> emailDomains;
    std::array<std::string_view, 5> mailboxes; ///< at the first domain, or whole addresses
    std::array<std::string_view, 3> emailPatterns;
    std::array<std::string_view, 5> displayNamePatterns;
};

namespace tables {

using enum BotCategory;

// clang-format off
inline constexpr CalendarBotSignatureRow calendarBotSignatureTable[] = {
    {"otter-cal",       "Otter.ai",             transcription, 95, {"otter.ai"},                                         {"notetaker", "otterpilot", "assistant", "bot", "noreply"},                   {"otterpilot", "otter-notetaker", "otter.notetaker"}, {"otterpilot", "otter notetaker", "notetaker (otter", "'s notetaker (otter", "otter.ai"}},
    {"fireflies-cal",   "Fireflies.ai",         transcription, 95, {"fireflies.ai"},                                     {"fred", "notetaker", "bot", "assistant", "app"},                             {},                                                   {"fireflies", "fireflies notetaker", "fred (fireflies", "fireflies.ai"}                 },
    {"fathom-cal",      "Fathom",               transcription, 90, {"fathom.video"},                                     {"notetaker", "notes", "bot", "assistant", "noreply"},                        {},                                                   {"fathom notetaker", "fathom note", "fathom bot", "fathom ai"}                          },
    {"read-cal",        "Read.ai",              transcription, 90, {"read.ai"},                                          {"notetaker", "bot", "assistant", "app", "noreply"},                          {},                                                   {"read ai", "read notetaker", "read.ai"}                                                },
    {"avoma-cal",       "Avoma",                transcription, 95, {"avoma.com"},                                        {"assistant", "notetaker", "bot", "app"},                                     {},                                                   {"avoma", "avoma assistant", "avoma notetaker", "avoma bot"}                            },
    {"gong-cal",        "Gong.io",              sales,         90, {"gong.io", "assistant.gong.io"},                     {"assistant", "bot", "notetaker", "meet"},                                    {},                                                   {"gong", "gong assistant", "gong notetaker", "gong recorder", "gong.io"}                },
    {"chorus-cal",      "Chorus.ai (ZoomInfo)", sales,         90, {"chorus.ai", "chorus.zoominfo.com"},                 {"notetaker", "bot", "assistant", "recorder"},                                {},                                                   {"chorus", "chorus notetaker", "chorus recorder", "zoominfo chorus", "chorus.ai"}       },
    {"grain-cal",       "Grain",                transcription, 85, {"grain.com", "grain.co"},                            {"notetaker", "bot", "notetaker@grain.co", "bot@grain.co", "assistant"},      {},                                                   {"grain notetaker", "grain recorder", "grain bot", "grain.com"}                         },
    {"tldv-cal",        "tl;dv",                transcription, 90, {"tldv.io"},                                          {"notetaker", "bot", "recorder", "assistant"},                                {},                                                   {"tldv", "tl;dv", "tl;dv notetaker", "tldv notetaker", "tldv recorder"}                 },
    {"circleback-cal",  "Circleback",           transcription, 90, {"circleback.ai"},                                    {"notetaker", "bot", "assistant", "app"},                                     {},                                                   {"circleback", "circleback notetaker", "circleback.ai"}                                 },
    {"fellow-cal",      "Fellow.app",           transcription, 85, {"fellow.app"},                                       {"notetaker", "bot", "assistant", "ai"},                                      {},                                                   {"fellow notetaker", "fellow ai", "fellow bot", "fellow.app"}                           },
    {"vowel-cal",       "Vowel",                transcription, 85, {"vowel.com"},                                        {"notetaker", "bot", "assistant", "recorder"},                                {},                                                   {"vowel notetaker", "vowel recorder", "vowel bot"}                                      },
    {"krisp-cal",       "Krisp",                transcription, 85, {"krisp.ai"},                                         {"notetaker", "bot", "assistant"},                                            {},                                                   {"krisp notetaker", "krisp ai", "krisp bot"}                                            },
    {"sembly-cal",      "Sembly.ai",            transcription, 90, {"sembly.ai"},                                        {"notetaker", "bot", "glean", "assistant"},                                   {},                                                   {"sembly", "sembly notetaker", "sembly.ai"}                                             },
    {"clari-cal",       "Clari Copilot",        sales,         85, {"clari.com", "trywingman.com", "copilot.clari.com"}, {"notetaker", "bot", "copilot", "assistant@trywingman.com"},                  {},                                                   {"clari copilot", "clari notetaker", "clari bot", "wingman"}                            },
    {"salesloft-cal",   "Salesloft",            sales,         85, {"salesloft.com"},                                    {"notetaker", "bot", "assistant"},                                            {},                                                   {"salesloft notetaker", "salesloft bot", "salesloft recorder"}                          },
    {"meetgeek-cal",    "MeetGeek",             transcription, 90, {"meetgeek.ai"},                                      {"notetaker", "bot", "assistant"},                                            {},                                                   {"meetgeek", "meetgeek notetaker", "meetgeek bot"}                                      },
    {"notta-cal",       "Notta.ai",             transcription, 90, {"notta.ai"},                                         {"notetaker", "bot", "assistant"},                                            {},                                                   {"notta", "notta notetaker", "notta.ai"}                                                },
    {"jamie-cal",       "Jamie AI",             transcription, 80, {"meetjamie.ai", "app.meetjamie.ai"},                 {"notetaker", "bot", "assistant"},                                            {},                                                   {"jamie notetaker", "meetjamie", "jamie ai"}                                            },
    {"bluedot-cal",     "Bluedot",              transcription, 85, {"bluedothq.com", "app.bluedothq.com"},               {"notetaker", "bot", "notetaker@app.bluedothq.com", "bot@app.bluedothq.com"}, {},                                                   {"bluedot notetaker", "bluedot bot", "bluedot recorder"}                                },
    {"brighthire-cal",  "BrightHire",           recruiting,    90, {"brighthire.com", "brighthire.ai"},                  {"notetaker", "bot", "assistant", "notetaker@brighthire.ai"},                 {},                                                   {"brighthire", "brighthire notetaker", "brighthire recorder"}                           },
    {"metaview-cal",    "Metaview",             recruiting,    90, {"metaview.ai"},                                      {"notetaker", "bot", "assistant"},                                            {},                                                   {"metaview", "metaview notetaker", "metaview recorder"}                                 },
    {"recall-cal",      "Recall.ai",            transcription, 85, {"recall.ai"},                                        {"notetaker", "bot", "assistant"},                                            {},                                                   {"recall notetaker", "meeting notetaker", "recall.ai"}                                  },
    {"supernormal-cal", "Supernormal",          transcription, 85, {"supernormal.com"},                                  {"notetaker", "bot", "assistant"},                                            {},                                                   {"supernormal", "supernormal notetaker"}                                                },
    {"wudpecker-cal",   "Wudpecker",            transcription, 90, {"wudpecker.io"},                                     {"notetaker", "bot"},                                                         {},                                                   {"wudpecker", "wudpecker notetaker"}                                                    },
    {"colibri-cal",     "Colibri.ai",           transcription, 85, {"colibri.ai"},                                       {"notetaker", "bot"},                                                         {},                                                   {"colibri", "colibri.ai"}                                                               },
    {"tactiq-cal",      "Tactiq",               transcription, 80, {"tactiq.io"},                                        {"notetaker", "bot"},                                                         {},                                                   {"tactiq", "tactiq notetaker"}                                                          },
    {"outreach-cal",    "Outreach Kaia",        sales,         85, {"outreach.io"},                                      {"kaia", "notetaker", "bot"},                                                 {},                                                   {"outreach kaia", "kaia (outreach)", "outreach notetaker"}                              },
    {"revenue-cal",     "Revenue.io",           sales,         85, {"revenue.io"},                                       {"notetaker", "bot", "assistant"},                                            {},                                                   {"revenue notetaker", "revenue.io"}                                                     },
    {"sybill-cal",      "Sybill",               sales,         85, {"sybill.ai"},                                        {"notetaker", "bot", "assistant"},                                            {},                                                   {"sybill", "sybill notetaker", "sybill ai"}                                             },
    {"modjo-cal",       "Modjo",                sales,         85, {"modjo.ai"},                                         {"notetaker", "bot"},                                                         {},                                                   {"modjo", "modjo notetaker"}                                                            },
    {"nyota-cal",       "Nyota",                transcription, 85, {"nyota.ai"},                                         {"notetaker", "bot"},                                                         {},                                                   {"nyota", "nyota notetaker"}                                                            },
    {"clearword-cal",   "Clearword",            transcription, 85, {"clearword.com", "getclearword.com"},                {"notetaker", "notetaker@getclearword.com", "bot"},                           {},                                                   {"clearword", "clearword notetaker"}                                                    },
    {"claap-cal",       "Claap",                transcription, 85, {"claap.io"},                                         {"notetaker", "bot"},                                                         {},                                                   {"claap", "claap notetaker"}                                                            },
    {"rewatch-cal",     "Rewatch",              transcription, 85, {"rewatch.com"},                                      {"notetaker", "bot"},                                                         {},                                                   {"rewatch", "rewatch notetaker"}                                                        },
    {"jiminny-cal",     "Jiminny",              sales,         85, {"jiminny.com"},                                      {"notetaker", "bot"},                                                         {},                                                   {"jiminny", "jiminny notetaker"}                                                        },
};
// clang-format on

/// Prefixes of mailbox names that suggest a bot of any product. The first match wins.
inline constexpr std::string_view genericBotPrefixTable[] = {
    "notetaker",         "note-taker",        "note_taker",  "meeting-bot",      "meetingbot",
    "meeting-notetaker", "ai-notetaker",      "bot",         "recorder",         "meeting-recorder",
    "assistant",         "ai-assistant",      "transcriber", "scribe",           "meeting-scribe",
    "ai-scribe",         "noreply+notetaker", "noreply+bot", "noreply+recorder",
};

} // namespace tables
} // namespace quorva
