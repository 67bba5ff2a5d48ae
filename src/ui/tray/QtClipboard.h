// The clipboard of the desktop's window system (X11 selection CLIPBOARD, wl_data_device), by Qt.
#pragma once

#include "platform/Clipboard.h"

#include <QMetaObject>
#include <QString>

namespace quorva {

/// Needs a QGuiApplication. What has been set is handed to a clipboard manager, where there is one,
/// when the program ends.
///
/// Wayland lets only the program that has the keyboard set the clipboard: there, a text that is set
/// without it is set again as soon as a window of this program gets it.
class QtClipboard final : public Clipboard {
public:
    QtClipboard();
    ~QtClipboard() override;

    QtClipboard(const QtClipboard&) = delete;
    QtClipboard& operator=(const QtClipboard&) = delete;

    void setText(std::string_view text) override;

    /// Whether a text waits for a window to get the keyboard.
    [[nodiscard]] bool isWaiting() const { return !waiting.isNull(); }

private:
    void setWaiting();

    QString waiting; ///< null: none
    QMetaObject::Connection activation;
};

} // namespace quorva
