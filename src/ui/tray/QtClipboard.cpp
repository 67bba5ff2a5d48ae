#include "ui/tray/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace quorva {

void QtClipboard::setText(std::string_view text) {
    auto* const clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

} // namespace quorva
