// The user's preferences for all programs of the desktop: less motion, larger text; and whether
// windows can be translucent.
#pragma once

#include <QObject>

namespace quorva {

/// Main thread only. Follows org.gnome.desktop.interface (GSettings), which other desktops set too.
/// If the schema or a key is missing, motion is wanted and text has its usual size.
class DesktopHints final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool reducesMotion READ reducesMotion CONSTANT)
    Q_PROPERTY(qreal textScale READ textScale CONSTANT)
    Q_PROPERTY(bool isTranslucent READ isTranslucent CONSTANT)
public:
    /// Reads all of it. A QGuiApplication must exist.
    DesktopHints();

    [[nodiscard]] bool reducesMotion() const { return hasReducedMotion; }
    /// The size of the application's font relative to the usual one.
    [[nodiscard]] qreal textScale() const { return scale; }
    /// Whether unpainted parts of a window are transparent.
    [[nodiscard]] bool isTranslucent() const { return isComposited; }

private:
    bool hasReducedMotion = false;
    qreal scale = 1;
    bool isComposited = true;
};

} // namespace quorva
