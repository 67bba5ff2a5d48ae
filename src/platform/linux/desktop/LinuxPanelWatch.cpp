#include "platform/linux/desktop/LinuxPanelWatch.h"

#include "platform/linux/glib/BusSignals.h"

#include <fmt/format.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <xcb/xcb.h>

namespace quorva {
namespace {

constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr Seconds managerInterval{15.0};

using XcbConnectionPtr = std::unique_ptr<xcb_connection_t, Release<xcb_disconnect>>;

template <typename T>
using XcbReplyPtr = std::unique_ptr<T, Release<std::free>>;

/// Whether a panel manages the tray icons of this session's X screen.
bool hasSelectionOwner() {
    if (std::getenv("DISPLAY") == nullptr)
        return false;
    int screen = 0;
    const XcbConnectionPtr x(xcb_connect(nullptr, &screen));
    if (xcb_connection_has_error(x.get()) != 0)
        return false;
    const auto name = fmt::format("_NET_SYSTEM_TRAY_S{}", screen);
    const XcbReplyPtr<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        x.get(), xcb_intern_atom(x.get(), 1, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const XcbReplyPtr<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        x.get(), xcb_get_selection_owner(x.get(), atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

bool LinuxPanelWatch::hasDisplay() {
    if (std::getenv("WAYLAND_DISPLAY") != nullptr)
        return true;
    const XcbConnectionPtr x(xcb_connect(nullptr, nullptr));
    return xcb_connection_has_error(x.get()) == 0;
}

LinuxPanelWatch::LinuxPanelWatch(MainLoop& loop_, GObjectPtr<GDBusConnection> bus_)
    : loop(loop_), bus(std::move(bus_)) {
    if (bus)
        watch = watchBusName(
            bus.get(), watcherName, [this](const std::string&) { setHasWatcher(true); },
            [this] { setHasWatcher(false); });
    else
        lookForManager();
}

void LinuxPanelWatch::setHasWatcher(bool isThere) {
    hasWatcher = isThere;
    managerTimer.reset();
    if (!isThere)
        lookForManager();
    changes.call();
}

/// An X panel is not watched once it is found: whoever shows the icon finds its successor.
void LinuxPanelWatch::lookForManager() {
    if (hasManager || hasWatcher)
        return;
    hasManager = hasSelectionOwner();
    if (hasManager)
        changes.call();
    else
        managerTimer = loop.after(managerInterval, lifetime.guard([this] { lookForManager(); }));
}

} // namespace quorva
