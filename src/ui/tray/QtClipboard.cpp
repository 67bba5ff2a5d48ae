#include "ui/tray/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <utility>

namespace quorva {
namespace {

void setNow(const QString& text) {
    auto* const clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
}

bool needsKeyboard() {
    return QGuiApplication::platformName().startsWith("wayland") &&
           QGuiApplication::applicationState() != Qt::ApplicationActive;
}

} // namespace

QtClipboard::QtClipboard() {
    activation = QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, qGuiApp,
                                  [this](Qt::ApplicationState state) {
                                      if (state == Qt::ApplicationActive)
                                          setWaiting();
                                  });
}

QtClipboard::~QtClipboard() {
    QObject::disconnect(activation);
}

void QtClipboard::setText(std::string_view text) {
    const auto next = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    waiting = needsKeyboard() ? next : QString();
    setNow(next);
}

void QtClipboard::setWaiting() {
    if (isWaiting())
        setNow(std::exchange(waiting, {}));
}

} // namespace quorva
