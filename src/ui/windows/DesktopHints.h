// What the user has asked of all programs of the desktop: less motion, larger texts, and whether
// windows can be translucent.
#pragma once

#include <QObject>

namespace quorva {

/// Main thread only. Follows org.gnome.desktop.interface (GSettings), which desktops keep that are
/// not GNOME too; where its schema is not installed, or lacks a key, motion is wanted and texts
/// have their usual size.
class DesktopHints final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool reducesMotion READ reducesMotion CONSTANT)
    Q_PROPERTY(qreal textScale READ textScale CONSTANT)
    Q_PROPERTY(bool isTranslucent READ isTranslucent CONSTANT)
public:
    /// Looks it all up. A QGuiApplication must be there.
    DesktopHints();

    [[nodiscard]] bool reducesMotion() const { return hasReducedMotion; }
    /// How much larger than usual the application's font is.
    [[nodiscard]] qreal textScale() const { return scale; }
    /// Whether what is not painted of a window lets through what lies behind it.
    [[nodiscard]] bool isTranslucent() const { return isComposited; }

private:
    bool hasReducedMotion = false;
    qreal scale = 1;
    bool isComposited = true;
};

} // namespace quorva
