// What helps when a source cannot be read, in the same words everywhere.
#pragma once

namespace quorva::remedies {

inline constexpr auto processesCannotBeListed =
    "the processes can't be listed: /proc is not mounted or can't be read";

inline constexpr auto accessibilityIsOff =
    "accessibility is switched off: switch it on in the desktop's accessibility settings, or with "
    "\"gsettings set org.gnome.desktop.interface toolkit-accessibility true\", and restart the "
    "programs that run already";

} // namespace quorva::remedies
