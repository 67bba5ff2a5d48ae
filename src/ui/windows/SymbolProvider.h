// Draws the symbols of SymbolTable.h in the colour and size that a view asks for.
#pragma once

#include <QQuickImageProvider>

namespace quorva {

/// The images "image://symbol/NAME/RRGGBB". A name that is not in the table gives an empty image.
/// Called on the main thread, as QIcon must be.
class SymbolProvider final : public QQuickImageProvider {
public:
    SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace quorva
