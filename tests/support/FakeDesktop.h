// The rest of a desktop in memory: clipboard, speech, sound devices, login item, settings, updates.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/AudioDevices.h"
#include "platform/Clipboard.h"
#include "platform/DetectionTest.h"
#include "platform/LoginItem.h"
#include "platform/SpeechSynthesizer.h"
#include "platform/SystemSettings.h"
#include "platform/UpdateService.h"

#include <deque>
#include <utility>

namespace quorva {

class FakeClipboard final : public Clipboard {
public:
    std::string text;
    void setText(std::string_view next) override { text = next; }
};

class FakeSpeechSynthesizer final : public SpeechSynthesizer {
public:
    std::vector<SpeechUtterance> spoken; ///< those that were begun
    std::vector<SpeechVoice> installed{
        {"Ann", "de-DE", 3}, {"Ben", "en-GB", 1}, {"Cy", "en-US", 1}};
    std::vector<std::string> voicesUsed;
    int cutOff = 0;
    std::optional<std::string> fault;
    CallbackList<> faultChanges;

    /// What is being spoken comes to its end.
    void finish() {
        speaks = false;
        beginNext();
    }
    /// The service fails, for a reason; without one, it works again.
    void become(std::optional<std::string> next) {
        if (next) {
            waiting.clear();
            speaks = false;
        }
        if (std::exchange(fault, next) != next)
            faultChanges.call();
    }

    [[nodiscard]] bool isSpeaking() const override { return speaks; }
    void stopSpeaking() override {
        waiting.clear();
        cutOff += std::exchange(speaks, false) ? 1 : 0;
    }
    void speak(SpeechUtterance utterance) override {
        waiting.push_back(std::move(utterance));
        if (!speaks)
            beginNext();
    }
    [[nodiscard]] std::optional<std::string> problem() const override { return fault; }
    [[nodiscard]] Subscription onProblemChange(Task callback) override {
        return faultChanges.add(std::move(callback));
    }

private:
    void beginNext() {
        if (waiting.empty())
            return;
        auto utterance = std::move(waiting.front());
        waiting.pop_front();
        const auto* const voice = utterance.voice ? utterance.voice(installed) : nullptr;
        voicesUsed.push_back(voice ? voice->name : "default for " + utterance.language);
        spoken.push_back(std::move(utterance));
        speaks = true;
    }

    std::deque<SpeechUtterance> waiting;
    bool speaks = false;
};

class FakeAudioDevices final : public AudioDevices {
public:
    std::optional<std::vector<AudioDevice>> devices = std::vector<AudioDevice>{};
    [[nodiscard]] Subscription
    fetchDevices(std::function<void(std::optional<std::vector<AudioDevice>>)> done) override {
        done(devices);
        return {};
    }
};

/// Answers with the next turn of the main loop.
class FakeLoginItem final : public LoginItem {
public:
    explicit FakeLoginItem(MainLoop& loop_) : loop(loop_) {}

    LoginItemStatus state = LoginItemStatus::notRegistered;
    std::optional<std::string> error;
    int changes = 0;

    [[nodiscard]] Subscription fetchStatus(std::function<void(LoginItemStatus)> done) override {
        auto request = std::make_shared<Lifetime>();
        loop.post(request->guard([this, done = std::move(done)] { done(state); }));
        return Subscription([request]() mutable { request.reset(); });
    }
    void setEnabled(bool isEnabled, Done done) override {
        ++changes;
        if (!error)
            state = isEnabled ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
        loop.post([done = std::move(done), result = error] { done(result); });
    }

private:
    MainLoop& loop;
};

class FakeSystemSettings final : public SystemSettings {
public:
    std::vector<SettingsPane> opened;
    std::vector<std::string> addresses;
    bool hasPanes = true;

    bool open(SettingsPane pane) override {
        opened.push_back(pane);
        return hasPanes;
    }
    bool openAddress(const std::string& address) override {
        addresses.push_back(address);
        return hasPanes;
    }
};

class FakeUpdateService final : public UpdateService {
public:
    UpdateAnswer answer;
    int checks = 0;

    [[nodiscard]] Subscription
    checkForUpdates(std::function<void(const UpdateAnswer&)> done) override {
        ++checks;
        done(answer);
        return {};
    }
};

class FakeDetectionTest final : public DetectionTest {
public:
    std::function<void(const std::string&)> onLine;
    std::function<void(bool)> done;
    int runs = 0;

    [[nodiscard]] Subscription run(std::function<void(const std::string&)> nextOnLine,
                                   std::function<void(bool)> nextDone) override {
        ++runs;
        onLine = std::move(nextOnLine);
        done = std::move(nextDone);
        return {};
    }
};

} // namespace quorva
