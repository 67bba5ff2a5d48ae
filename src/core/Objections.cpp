#include "core/Objections.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

namespace quorva {
namespace {

constexpr Seconds toastDuration{2.5};
constexpr Seconds longestAttempt{30.0}; ///< to speak: starting the service, and its answers
constexpr double speechRate = 0.48;
constexpr double speechVolume = 0.85;
constexpr double speechPitch = 1.0;

/// `problem` is the speech service's, a sentence.
std::string toastTextFor(const std::optional<std::string>& problem) {
    if (!problem)
        return "Statement spoken · full text copied to clipboard";
    auto reason = printable(*problem).str();
    while (reason.ends_with('.'))
        reason.pop_back();
    if (!reason.empty())
        reason = lowerCased(std::string_view(reason).substr(0, 1)) + reason.substr(1);
    return "Full text copied to clipboard. Not spoken: " + reason;
}

/// A random UUID (version 4 of RFC 4122) in upper case.
std::string randomUuid() {
    std::random_device random;
    std::array<std::uint32_t, 4> words{};
    for (auto& word : words)
        word = random();
    words[1] = (words[1] & 0xFFFF0FFFU) | 0x00004000U;
    words[2] = (words[2] & 0x3FFFFFFFU) | 0x80000000U;
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", words[0], words[1] >> 16U,
                       words[1] & 0xFFFFU, words[2] >> 16U, words[2] & 0xFFFFU, words[3]);
}

} // namespace

const SpeechVoice* bestEnglishVoice(const std::vector<SpeechVoice>& installed) {
    const SpeechVoice* best = nullptr;
    for (const auto& voice : installed)
        if (lowerCased(voice.language).starts_with("en") &&
            (best == nullptr || voice.quality > best->quality))
            best = &voice;
    return best;
}

Objections::Objections(MainLoop& loop_, Preferences& preferences, Log& log, Clipboard& clipboard_,
                       SpeechSynthesizer& speechSynthesizer_)
    : objectionLog(objectionLogShape, loop_, preferences, log),
      loop(loop_),
      clipboard(clipboard_),
      speechSynthesizer(speechSynthesizer_) {
    speechProblem = speechSynthesizer.onProblemChange(lifetime.guard([this] { followSpeech(); }));
}

bool Objections::fileObjection(const ObjectionOccasion& occasion) {
    const auto which = occasion.objectionTemplate.value_or(selectedTemplate);
    const auto& text = objectionText(which);
    speakObjection(which);
    clipboard.setText(text.writtenStatement);
    objectionLog.add({
        .id = randomUuid(),
        .timestamp = loop.now(),
        .templateUsed = std::string(text.displayTitle),
        .botName = occasion.botName,
        .meetingContext = occasion.meetingContext,
        .source = occasion.source,
        .copiedToClipboard = true,
    });
    filedAt = loop.now();
    toastText = toastTextFor(speechSynthesizer.problem());
    showToast();
    return true;
}

void Objections::showToast() {
    showingObjectionToast = true;
    toastTimers.push_back(loop.after(toastDuration, lifetime.guard([this] {
        showingObjectionToast = false;
        toastTimers.pop_front(); // the oldest: they fall due in their order
    })));
}

/// Whether the service speaks is known only after an objection has been filed, and may take longer
/// than the confirmation is shown.
void Objections::followSpeech() {
    if (!filedAt || loop.now() - *filedAt > longestAttempt)
        return;
    const auto problem = speechSynthesizer.problem();
    if (problem && !showingObjectionToast)
        showToast();
    toastText = toastTextFor(problem);
}

void Objections::speakObjection(ObjectionTemplate which) {
    if (speechSynthesizer.isSpeaking())
        speechSynthesizer.stopSpeaking();
    speechSynthesizer.speak({
        .text = std::string(objectionText(which).spokenStatement),
        .voice = bestEnglishVoice,
        .language = "en-US",
        .rate = speechRate,
        .volume = speechVolume,
        .pitchMultiplier = speechPitch,
    });
}

} // namespace quorva
