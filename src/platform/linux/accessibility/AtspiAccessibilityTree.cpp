#include "platform/linux/accessibility/AtspiAccessibilityTree.h"

#include "platform/linux/glib/MainContext.h"

#include <cerrno>
#include <chrono>
#include <future>
#include <utility>

namespace quorva {
namespace {

constexpr std::chrono::milliseconds startTimeout{2000};

} // namespace

AtspiAccessibilityTree::AtspiAccessibilityTree() {
    const auto first = std::make_shared<std::promise<bool>>();
    auto firstTrust = first->get_future();
    const auto onTrust = lifetime.guard([this](bool isTrusted) { handleTrust(isTrusted); });
    const auto onAnswer =
        lifetime.guard([this](ProcessIdentifier process, const AtspiAnswer& answer) {
            handleAnswer(process, answer);
        });
    worker = std::make_unique<AtspiWorker>(
        AtspiWorker::Reports{[onTrust, first, isFirst = true](bool isTrusted) mutable {
                                 if (std::exchange(isFirst, false))
                                     first->set_value(isTrusted);
                                 postToMain([onTrust, isTrusted] { onTrust(isTrusted); });
                             },
                             [onAnswer](ProcessIdentifier process, AtspiAnswer answer) {
                                 postToMain([onAnswer, process, answer = std::move(answer)] {
                                     onAnswer(process, answer);
                                 });
                             }});
    thread.post([this] { worker->start(); });
    if (firstTrust.wait_for(startTimeout) == std::future_status::ready)
        trusted = firstTrust.get();
}

AtspiAccessibilityTree::~AtspiAccessibilityTree() {
    thread.post([this] { worker.reset(); });
}

bool AtspiAccessibilityTree::isTrusted() const {
    return trusted;
}

Subscription AtspiAccessibilityTree::onTrustChange(Task callback) {
    return trustCallbacks.add(std::move(callback));
}

void AtspiAccessibilityTree::requestTrust(std::function<void(bool)> done) {
    const auto answer = lifetime.guard([this, done = std::move(done)](bool isSwitchedOn) {
        if (isSwitchedOn)
            handleTrust(true);
        done(trusted);
    });
    thread.post([this, answer] {
        if (worker)
            worker->switchOn([answer](bool isSwitchedOn) {
                postToMain([answer, isSwitchedOn] { answer(isSwitchedOn); });
            });
    });
}

int AtspiAccessibilityTree::enable(ProcessIdentifier process, AccessibilitySwitch) {
    enabling.insert(process);
    const auto known = answers.find(process);
    return known != answers.end() ? known->second.enableResult : EINPROGRESS;
}

AccessibleWindows AtspiAccessibilityTree::windows(ProcessIdentifier process) const {
    const auto known = answers.find(process);
    return known != answers.end() ? known->second.windows : AccessibleWindows{};
}

void AtspiAccessibilityTree::request(std::vector<ReadingRequest> requests) {
    std::vector<AtspiRequest> all;
    std::map<ProcessIdentifier, AtspiAnswer> kept;
    all.reserve(requests.size());
    for (auto& request : requests) {
        const auto process = request.process;
        if (auto known = answers.extract(process))
            kept.insert(std::move(known));
        else
            kept[process].enableResult = EINPROGRESS;
        all.push_back({std::move(request), enabling.contains(process)});
    }
    answers = std::move(kept);
    enabling.clear();
    thread.post([this, all = std::move(all)] {
        if (worker)
            worker->request(all);
    });
}

Subscription AtspiAccessibilityTree::onRead(Task callback) {
    return readCallbacks.add(std::move(callback));
}

void AtspiAccessibilityTree::handleTrust(bool isTrusted) {
    if (std::exchange(trusted, isTrusted) == isTrusted)
        return;
    if (!isTrusted)
        for (auto& [process, answer] : answers)
            answer = {{}, EINPROGRESS};
    trustCallbacks.call();
}

/// Drops answers to earlier requests.
void AtspiAccessibilityTree::handleAnswer(ProcessIdentifier process, AtspiAnswer answer) {
    const auto known = answers.find(process);
    if (known == answers.end())
        return;
    known->second = std::move(answer);
    readCallbacks.call();
}

} // namespace quorva
