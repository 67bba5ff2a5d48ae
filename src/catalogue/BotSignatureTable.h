// The catalogue of note-takers, recorders and sales-intelligence assistants, one product a row. If
// several rows match, the first one wins. Lists are padded with empty texts.
#pragma once

#include "catalogue/Enumerations.h"

#include <array>
#include <string_view>

namespace quorva {

struct BotSignatureRow {
    std::string_view id;
    std::string_view name;
    BotCategory category;
    int baseConfidence;
    std::array<std::string_view, 2> processNames;
    std::array<std::string_view, 3> bundleIdentifiers;
    std::array<std::string_view, 2> pathPatterns;
};

namespace tables {

using enum BotCategory;

// clang-format off
inline constexpr BotSignatureRow botSignatureTable[] = {
    {"otter",       "Otter.ai",             transcription, 95, {"otter", "otterpilot"},         {"com.aisense.otter", "ai.otter"},             {"otter.app"}                          },
    {"fireflies",   "Fireflies.ai",         transcription, 90, {"fireflies", "fred"},           {"ai.fireflies"},                              {"fireflies.app"}                      },
    {"fathom",      "Fathom",               transcription, 95, {"fathom"},                      {"video.fathom.electron", "video.fathom"},     {"fathom.app"}                         },
    {"read",        "Read.ai",              transcription, 90, {"read.ai", "readai"},           {"ai.read"},                                   {"read.ai.app", "readai.app"}          },
    {"avoma",       "Avoma",                transcription, 90, {"avoma"},                       {"com.avoma"},                                 {"avoma.app"}                          },
    {"tldv",        "tl;dv",                transcription, 90, {"tldv", "tl;dv"},               {"io.tldv"},                                   {"tldv.app"}                           },
    {"grain",       "Grain",                transcription, 85, {"grain"},                       {"com.grain"},                                 {"grain.app"}                          },
    {"sembly",      "Sembly.ai",            transcription, 90, {"sembly"},                      {"ai.sembly"},                                 {"sembly.app"}                         },
    {"krisp",       "Krisp",                transcription, 85, {"krisp"},                       {"ai.krisp.krispmac", "ai.krisp"},             {"krisp.app"}                          },
    {"meetgeek",    "MeetGeek",             transcription, 90, {"meetgeek"},                    {"ai.meetgeek"},                               {"meetgeek.app"}                       },
    {"tactiq",      "Tactiq",               transcription, 85, {"tactiq"},                      {"io.tactiq"},                                 {"tactiq.app"}                         },
    {"supernormal", "Supernormal",          transcription, 85, {"supernormal"},                 {"com.supernormal"},                           {"supernormal.app"}                    },
    {"fellow",      "Fellow.app",           transcription, 85, {"fellow"},                      {"app.fellow"},                                {"fellow.app"}                         },
    {"notta",       "Notta.ai",             transcription, 90, {"notta"},                       {"ai.notta"},                                  {"notta.app"}                          },
    {"sonix",       "Sonix",                transcription, 85, {"sonix"},                       {"ai.sonix"},                                  {"sonix.app"}                          },
    {"rev",         "Rev.com",              transcription, 80, {"rev"},                         {"ai.rev", "com.rev"},                         {"rev.app"}                            },
    {"vowel",       "Vowel",                transcription, 85, {"vowel"},                       {"com.vowel"},                                 {"vowel.app"}                          },
    {"happyscribe", "Happy Scribe",         transcription, 85, {"happyscribe", "happy scribe"}, {"com.happyscribe"},                           {"happyscribe.app", "happy scribe.app"}},
    {"bluedot",     "Bluedot",              transcription, 85, {"bluedot"},                     {"io.bluedot"},                                {"bluedot.app"}                        },
    {"jamie",       "Jamie AI",             transcription, 85, {"jamie", "meetjamie"},          {"ai.jamie", "com.meetjamie"},                 {"jamie.app", "meetjamie.app"}         },
    {"rewatch",     "Rewatch",              transcription, 85, {"rewatch"},                     {"com.rewatch"},                               {"rewatch.app"}                        },
    {"claap",       "Claap",                transcription, 85, {"claap"},                       {"io.claap"},                                  {"claap.app"}                          },
    {"colibri",     "Colibri.ai",           transcription, 85, {"colibri"},                     {"ai.colibri"},                                {"colibri.app"}                        },
    {"clearword",   "Clearword",            transcription, 85, {"clearword"},                   {"com.clearword", "com.getclearword"},         {"clearword.app"}                      },
    {"wudpecker",   "Wudpecker",            transcription, 90, {"wudpecker"},                   {"com.wudpecker"},                             {"wudpecker.app"}                      },
    {"circleback",  "Circleback",           transcription, 90, {"circleback"},                  {"ai.circleback"},                             {"circleback.app"}                     },
    {"nyota",       "Nyota",                transcription, 85, {"nyota"},                       {"ai.nyota"},                                  {"nyota.app"}                          },
    {"screenapp",   "ScreenApp",            transcription, 85, {"screenapp"},                   {"io.screenapp"},                              {"screenapp.app"}                      },
    {"airgram",     "Airgram",              transcription, 85, {"airgram"},                     {"com.airgram"},                               {"airgram.app"}                        },
    {"zygo",        "Zygo",                 transcription, 90, {"zygo"},                        {"ai.zygo"},                                   {"zygo.app"}                           },
    {"verbit",      "Verbit",               transcription, 85, {"verbit"},                      {"ai.verbit"},                                 {"verbit.app"}                         },
    {"dubber",      "Dubber",               transcription, 80, {"dubber"},                      {"net.dubber"},                                {"dubber.app"}                         },
    {"gong",        "Gong.io",              sales,         90, {"gong"},                        {"io.gong"},                                   {"gong.app"}                           },
    {"chorus",      "Chorus.ai (ZoomInfo)", sales,         90, {"chorus"},                      {"ai.chorus", "com.zoominfo.chorus"},          {"chorus.app"}                         },
    {"clari",       "Clari Copilot",        sales,         85, {"clari", "wingman"},            {"com.clari", "ai.wingman", "com.trywingman"}, {"clari.app", "wingman.app"}           },
    {"salesloft",   "Salesloft",            sales,         85, {"salesloft"},                   {"com.salesloft"},                             {"salesloft.app"}                      },
    {"outreach",    "Outreach Kaia",        sales,         85, {"outreach", "kaia"},            {"io.outreach"},                               {"outreach.app"}                       },
    {"revenue",     "Revenue.io",           sales,         85, {"revenue"},                     {"io.revenue"},                                {"revenue.app"}                        },
    {"jiminny",     "Jiminny",              sales,         85, {"jiminny"},                     {"com.jiminny"},                               {"jiminny.app"}                        },
    {"execvision",  "ExecVision",           sales,         85, {"execvision"},                  {"com.execvision"},                            {"execvision.app"}                     },
    {"mindtickle",  "Mindtickle",           sales,         85, {"mindtickle"},                  {"com.mindtickle"},                            {"mindtickle.app"}                     },
    {"dialpad",     "Dialpad",              sales,         80, {"dialpad"},                     {"com.dialpad", "ai.dialpad"},                 {"dialpad.app"}                        },
    {"modjo",       "Modjo",                sales,         85, {"modjo"},                       {"ai.modjo"},                                  {"modjo.app"}                          },
    {"sybill",      "Sybill",               sales,         85, {"sybill"},                      {"ai.sybill"},                                 {"sybill.app"}                         },
    {"brighthire",  "BrightHire",           recruiting,    90, {"brighthire"},                  {"com.brighthire"},                            {"brighthire.app"}                     },
    {"metaview",    "Metaview",             recruiting,    90, {"metaview"},                    {"ai.metaview"},                               {"metaview.app"}                       },
    {"pillar",      "Pillar",               recruiting,    80, {"pillar"},                      {"hr.pillar"},                                 {"pillar.app"}                         },
    {"reclaim",     "Reclaim.ai",           productivity,  80, {"reclaim"},                     {"ai.reclaim"},                                {"reclaim.app"}                        },
    {"clockwise",   "Clockwise",            productivity,  80, {"clockwise"},                   {"ai.clockwise"},                              {"clockwise.app"}                      },
    {"granola",     "Granola",              localRecorder, 95, {"granola"},                     {"com.granola.app", "ai.granola"},             {"granola.app"}                        },
    {"cluely",      "Cluely",               localRecorder, 95, {"cluely"},                      {"com.cluely", "app.cluely"},                  {"cluely.app"}                         },
    {"pluely",      "Pluely",               localRecorder, 90, {"pluely"},                      {"com.pluely"},                                {"pluely.app", "pluely"}               },
    {"hyprnote",    "Hyprnote",             localRecorder, 90, {"hyprnote"},                    {"com.hyprnote"},                              {"hyprnote.app"}                       },
    {"meetily",     "Meetily",              localRecorder, 90, {"meetily", "meeting-minutes"},  {"ai.meetily"},                                {"meetily.app", "meeting-minutes"}     },
    {"recap",       "Recap",                localRecorder, 80, {"recap"},                       {"com.recap", "app.recap"},                    {"recap.app"}                          },
    {"alter",       "Alter",                localRecorder, 85, {"alter"},                       {"com.alterhq", "com.alter"},                  {"alter.app"}                          },
    {"convo",       "Convo",                localRecorder, 80, {"convo"},                       {"com.itsconvo", "com.convo"},                 {"convo.app"}                          },
    {"plaud",       "Plaud Note",           localRecorder, 85, {"plaud", "plaudnote"},          {"com.plaud"},                                 {"plaud.app", "plaudnote.app"}         },
};
// clang-format on

} // namespace tables

} // namespace quorva
