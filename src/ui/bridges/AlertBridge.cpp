#include "ui/bridges/AlertBridge.h"

namespace quorva {

void AlertBridge::show(const BotAlert& alert) {
    shown = alert;
    emit changed();
}

} // namespace quorva
