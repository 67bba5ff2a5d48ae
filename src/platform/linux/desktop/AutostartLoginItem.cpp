#include "platform/linux/desktop/AutostartLoginItem.h"

#include "platform/linux/glib/MainContext.h"

#include <utility>

namespace quorva {

AutostartLoginItem::AutostartLoginItem(AutostartEntry entry_)
    : entry(std::make_shared<const AutostartEntry>(std::move(entry_))) {}

AutostartLoginItem::AutostartLoginItem()
    : AutostartLoginItem(AutostartEntry(g_get_user_config_dir(), AutostartEntry::ownProgram())) {}

Subscription AutostartLoginItem::fetchStatus(std::function<void(LoginItemStatus)> done) {
    auto request = std::make_shared<Lifetime>();
    (void)worker.post([entry = entry, report = request->guard(lifetime.guard(std::move(done)))] {
        postToMain([report, status = entry->status()] { report(status); });
    });
    return Subscription([request]() mutable { request.reset(); });
}

void AutostartLoginItem::setEnabled(bool isEnabled, Done done) {
    (void)worker.post([entry = entry, isEnabled, report = lifetime.guard(std::move(done))] {
        postToMain(
            [report, failure = isEnabled ? entry->enable() : entry->remove()] { report(failure); });
    });
}

} // namespace quorva
