// Opens other programs for the user: the desktop's settings, a web page in the browser.
#pragma once

#include <string>

namespace quorva {

enum class SettingsPane { accessibility, calendarPrivacy, internetAccounts };

/// Main thread only.
class SystemSettings {
public:
    virtual ~SystemSettings() = default;

    /// Opens a pane of the desktop's settings. False when no such pane is known for this desktop,
    /// or its program could not be started.
    virtual bool open(SettingsPane pane) = 0;

    /// Opens an address ("https:", "appstream:") in the program that handles it. False when there
    /// is none.
    virtual bool openAddress(const std::string& address) = 0;
};

} // namespace quorva
