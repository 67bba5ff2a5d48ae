// The QML windows and their engine, which is created with the first window and freed a minute after
// the last one has closed.
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
    /// The loop must outlive this. Creates nothing of Qt Quick yet.
    explicit QuickWindows(MainLoop& loop);
    ~QuickWindows();

    QuickWindows(const QuickWindows&) = delete;
    QuickWindows& operator=(const QuickWindows&) = delete;

    /// The window of a view such as "MenuBarView", created if necessary, but not shown. The view
    /// binds to `bridge`, which must outlive the window. Null if the view's file is broken, which
    /// the tests rule out.
    QQuickWindow* make(const QString& view, QObject& bridge);

    /// The window; null when there is none.
    [[nodiscard]] QQuickWindow* find(const QString& view) const { return windows.value(view); }

    /// Hides the window and deletes it after it has handled the current event.
    void close(const QString& view);

    /// Hides the window but keeps it, because it will be shown again soon.
    void hide(const QString& view);

    /// Whether the engine exists.
    [[nodiscard]] bool isLoaded() const { return static_cast<bool>(engine); }

    /// The desktop's preferences; null while nothing is loaded.
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
    Lifetime lifetime; // last: destroyed first
};

} // namespace quorva
