#include "ui/windows/DesktopHints.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <memory>
#undef signals // GIO has a member of this name
#include <gio/gio.h>

#include <xcb/xcb.h>

namespace quorva {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

bool wantsAnimations() {
    auto* const source = g_settings_schema_source_get_default();
    auto* const schema =
        source ? g_settings_schema_source_lookup(source, "org.gnome.desktop.interface", TRUE)
               : nullptr;
    if (!schema)
        return true;
    bool wants = true;
    if (g_settings_schema_has_key(schema, "enable-animations")) {
        const std::unique_ptr<GSettings, Unref> settings(
            g_settings_new_full(schema, nullptr, nullptr));
        wants = g_settings_get_boolean(settings.get(), "enable-animations") != FALSE;
    }
    g_settings_schema_unref(schema);
    return wants;
}

/// On X11 the compositing manager owns the selection _NET_WM_CM_Sn (Extended Window Manager Hints);
/// other platforms always have one.
bool isCompositing() {
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    auto* const connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return true;
    constexpr char name[] = "_NET_WM_CM_S0";
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, sizeof name - 1, name), nullptr));
    if (!atom)
        return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom),
                                      nullptr));
    return owner && owner->owner != XCB_NONE;
}

qreal textScaleOf(const QFont& font) {
    constexpr qreal usual = 12; // Qt's own font where the desktop names none: 9 points at 96 dpi
    constexpr qreal most = 3;
    return std::clamp<qreal>(QFontInfo(font).pixelSize() / usual, 1, most);
}

} // namespace

DesktopHints::DesktopHints()
    : hasReducedMotion(!wantsAnimations()),
      scale(textScaleOf(QGuiApplication::font())),
      isComposited(isCompositing()) {}

} // namespace quorva
