// Walks the items of a window: its texts, its controls, and the contrast of its texts.
#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <string>
#include <utility>
#include <vector>

namespace quorva {

/// The texts that are visible, or would be after scrolling.
[[nodiscard]] std::vector<std::string> textsOf(const QQuickWindow& window);

/// The items that the keyboard or the pointer can operate.
[[nodiscard]] std::vector<QQuickItem*> controlsOf(const QQuickWindow& window);

/// The control with this accessible name; null when there is none.
[[nodiscard]] QQuickItem* controlNamed(const QQuickWindow& window, const QString& name);

/// Presses a control by its name, as a screen reader does. Fails the test when there is no such
/// control.
void press(const QQuickWindow& window, const QString& name);

/// Each text with its contrast to the background (WCAG 2, relative luminance).
[[nodiscard]] std::vector<std::pair<std::string, double>> contrastsOf(const QQuickWindow& window);

} // namespace quorva
