#include "core/AlertPanel.h"

#include <utility>

namespace quorva {

AlertPanel::AlertPanel(MainLoop& loop_) : loop(loop_) {}

void AlertPanel::show(BotAlert next) {
    constexpr Seconds timeShown{8.0};
    alert = std::move(next);
    dismissTimer = loop.after(timeShown, lifetime.guard([this] { dismiss(); }));
}

void AlertPanel::dismiss() {
    alert = std::nullopt;
}

} // namespace quorva
