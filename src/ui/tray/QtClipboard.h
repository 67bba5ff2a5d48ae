// The clipboard of the window system, through Qt (X11 selection CLIPBOARD, wl_data_device).
#pragma once

#include "platform/Clipboard.h"

#include <QMetaObject>
#include <QString>

namespace quorva {

/// Needs a QGuiApplication. When the program ends, the contents pass to the clipboard manager, if
/// there is one.
///
/// On Wayland only the program with the keyboard focus may set the clipboard. A text that is set
/// without the focus is set again as soon as a window of this program gets it.
class QtClipboard final : public Clipboard {
public:
    QtClipboard();
    ~QtClipboard() override;

    QtClipboard(const QtClipboard&) = delete;
    QtClipboard& operator=(const QtClipboard&) = delete;

    void setText(std::string_view text) override;

    /// Whether a text is waiting for a window to get the keyboard focus.
    [[nodiscard]] bool isWaiting() const { return !waiting.isNull(); }

private:
    void setWaiting();

    QString waiting; ///< null: none
    QMetaObject::Connection activation;
};

} // namespace quorva
