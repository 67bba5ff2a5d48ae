#include "core/ObjectionTexts.h"

#include <array>

namespace quorva {
namespace {

constexpr std::array texts{
    ObjectionText{
        ObjectionTemplate::california,
        "California (PC 632)",
        "References CA Penal Code 632",
        "I do not consent to AI recording or transcription of this conversation pursuant to "
        "California Penal Code Section 632. Any continued AI recording after this notice "
        "constitutes a violation of California's two-party consent wiretapping law.",
        "Hey everyone, just a quick note. I don't consent to AI recording or transcription of this "
        "conversation, under California privacy law. Thanks.",
    },
    ObjectionText{
        ObjectionTemplate::gdpr,
        "GDPR / EU",
        "References GDPR Articles 6, 7, 22",
        "I do not consent to AI recording, transcription, or automated processing of this "
        "conversation. Under GDPR Articles 6, 7, and 22, I object to any automated individual "
        "decision-making and request that all recordings be deleted immediately.",
        "Quick note for the record. I don't consent to AI recording or transcription of this call. "
        "Under EU privacy law, I'd ask that any AI recordings be deleted. Thanks.",
    },
    ObjectionText{
        ObjectionTemplate::general,
        "General Non-Consent",
        "Broad non-consent statement",
        "I do not consent to AI recording, transcription, or any form of automated capture of this "
        "conversation. Please disable all AI recording tools immediately. This notice serves as "
        "formal documentation of my non-consent.",
        "Just wanted to note for the record that I don't consent to AI recording or transcription "
        "of this conversation. Appreciate it.",
    },
    ObjectionText{
        ObjectionTemplate::brief,
        "Brief Statement",
        "One-sentence version",
        "I do not consent to AI recording or transcription of this meeting.",
        "Just a heads up, I don't consent to AI recording of this meeting.",
    },
};

} // namespace

const ObjectionText& objectionText(ObjectionTemplate which) {
    for (const auto& text : texts)
        if (text.objectionTemplate == which)
            return text;
    return texts.front();
}

} // namespace quorva
