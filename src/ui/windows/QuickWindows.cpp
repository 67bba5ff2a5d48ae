#include "ui/windows/QuickWindows.h"

#include "ui/windows/SymbolProvider.h"

#include <QCoreApplication>
#include <QEvent>
#include <QIcon>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <algorithm>
#include <malloc.h>
#include <utility>

namespace quorva {

namespace {

constexpr Seconds timeToReturn{60.0};

} // namespace

QuickWindows::QuickWindows(MainLoop& loop_) : loop(loop_) {}

QuickWindows::~QuickWindows() {
    free();
}

QQuickWindow* QuickWindows::make(const QString& view, QObject& bridge) {
    freeing.reset();
    if (auto* const present = find(view))
        return present;
    load();
    QQmlComponent component(engine.get(), QUrl("qrc:/qt/qml/Quorva/" + view + ".qml"));
    if (!component.isReady()) {
        qWarning("%s", qPrintable(component.errorString()));
        return nullptr;
    }
    auto* const made =
        component.createWithInitialProperties({{"bridge", QVariant::fromValue(&bridge)}});
    auto* const window = qobject_cast<QQuickWindow*>(made);
    if (!window) {
        delete made;
        return nullptr;
    }
    windows.insert(view, window);
    return window;
}

void QuickWindows::load() {
    if (engine)
        return;
    // Small windows, rarely shown: rendering with the graphics card would only cost memory.
    if (QQuickWindow::sceneGraphBackend().isEmpty())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QIcon::setFallbackThemeName("Adwaita");
    hints = std::make_unique<DesktopHints>();
    engine = std::make_unique<QQmlEngine>();
    engine->addImageProvider("symbol", new SymbolProvider);
    engine->rootContext()->setContextProperty("desktopHints", hints.get());
}

void QuickWindows::close(const QString& view) {
    if (auto* const window = windows.take(view)) {
        window->hide();
        window->deleteLater();
        freeLater();
    }
}

void QuickWindows::hide(const QString& view) {
    if (auto* const window = find(view)) {
        window->hide();
        freeLater();
    }
}

void QuickWindows::freeLater() {
    const bool isAnyShown =
        std::any_of(windows.begin(), windows.end(),
                    [](const QQuickWindow* window) { return window->isVisible(); });
    if (engine && !isAnyShown)
        freeing = loop.after(timeToReturn, lifetime.guard([this] { free(); }));
}

void QuickWindows::free() {
    // A window emits signals while it is destroyed, and the handlers ask which windows are left.
    for (auto* const window : std::exchange(windows, {}))
        delete window;
    freeing.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // windows deleted before
    engine.reset();
    hints.reset();
    ::malloc_trim(0); // return the windows' memory: the program runs for days
}

} // namespace quorva
