// The windows made of QML, and the engine that runs them: made with the first window, freed a
// minute after the last one has closed.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "ui/windows/DesktopHints.h"

#include <QHash>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <QVariantMap>
#include <memory>

namespace quorva {

/// Main thread only.
class QuickWindows {
public:
    /// The loop must outlive this. Nothing of Qt Quick is made yet.
    explicit QuickWindows(MainLoop& loop);
    ~QuickWindows();

    QuickWindows(const QuickWindows&) = delete;
    QuickWindows& operator=(const QuickWindows&) = delete;

    /// The window of a view, such as "MenuBarView", which is made unless it is there already; not
    /// shown yet. `bridge` is what the view binds to, and must outlive the window. Null when the
    /// view's file is broken, which the tests rule out.
    QQuickWindow* make(const QString& view, QObject& bridge);

    /// The window, if it has been made.
    [[nodiscard]] QQuickWindow* find(const QString& view) const { return windows.value(view); }

    /// Hides the window and lets it go, once whatever it is doing is done.
    void close(const QString& view);

    /// Hides the window, to be shown again soon.
    void hide(const QString& view);

    /// Whether the engine is there.
    [[nodiscard]] bool isLoaded() const { return static_cast<bool>(engine); }

    /// What this desktop is like; null while nothing is loaded.
    [[nodiscard]] const DesktopHints* desktopHints() const { return hints.get(); }

private:
    void load();
    void free();
    void freeLater();

    MainLoop& loop;
    std::unique_ptr<DesktopHints> hints;
    std::unique_ptr<QQmlEngine> engine;
    QHash<QString, QQuickWindow*> windows;
    Timer freeing;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
