// Starting at login by an entry in the user's autostart folder.
#pragma once

#include "base/Lifetime.h"
#include "base/SerialQueue.h"
#include "platform/LoginItem.h"
#include "platform/linux/desktop/AutostartEntry.h"

#include <memory>

namespace quorva {

/// Reads and writes the entry on a worker thread, one operation after the other. The destructor
/// waits up to two seconds for those under way.
class AutostartLoginItem final : public LoginItem {
public:
    explicit AutostartLoginItem(AutostartEntry entry);

    /// In the user's own folder, for the program that runs here.
    AutostartLoginItem();

    [[nodiscard]] Subscription fetchStatus(std::function<void(LoginItemStatus)> done) override;
    void setEnabled(bool isEnabled, Done done) override;

private:
    const std::shared_ptr<const AutostartEntry> entry; ///< used on the worker thread only
    SerialQueue worker{SerialQueue::unlimited, Seconds(2)};
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
