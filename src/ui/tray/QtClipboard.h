// The clipboard of the desktop's window system (X11 selection CLIPBOARD, wl_data_device), by Qt.
#pragma once

#include "platform/Clipboard.h"

namespace quorva {

/// Needs a QGuiApplication. What has been set is handed to a clipboard manager, where there is one,
/// when the program ends.
class QtClipboard final : public Clipboard {
public:
    void setText(std::string_view text) override;
};

} // namespace quorva
