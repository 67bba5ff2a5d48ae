// Looking about in a window: its texts, its controls, and how well its texts can be read.
#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <string>
#include <utility>
#include <vector>

namespace quorva {

/// The texts that are in sight, or would be if one scrolled.
[[nodiscard]] std::vector<std::string> textsOf(const QQuickWindow& window);

/// What the keyboard or the pointer can operate.
[[nodiscard]] std::vector<QQuickItem*> controlsOf(const QQuickWindow& window);

/// The control with this accessible name; null when there is none.
[[nodiscard]] QQuickItem* controlNamed(const QQuickWindow& window, const QString& name);

/// Presses a control by its name, as a screen reader does. Fails the test when it is not there.
void press(const QQuickWindow& window, const QString& name);

/// Each text with its contrast to what is painted behind it (WCAG 2, relative luminance).
[[nodiscard]] std::vector<std::pair<std::string, double>> contrastsOf(const QQuickWindow& window);

} // namespace quorva
