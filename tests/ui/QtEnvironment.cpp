#include "ui/QtEnvironment.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <utility>

// Options of the address sanitizer, which looks for these functions by name. Qt Quick's software
// renderer leaks the textures of pictures whose window is gone: ten kilobytes each time the views
// are loaded. Only fully unwound stacks show that a leak comes from there.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:QSGRenderContext::textureForFactory\nleak:QQuickPixmap::load\n";
}
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0:fast_unwind_on_malloc=0";
}
// NOLINTEND(bugprone-reserved-identifier)

namespace quorva {

namespace {

std::string warnings;

void note(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtDebugMsg && type != QtInfoMsg && !message.contains("XDG_RUNTIME_DIR") &&
        !message.startsWith("This plugin does not support"))
        warnings += message.toStdString() + '\n';
}

class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        qInstallMessageHandler(note);
        static int count = 1;
        static char name[] = "ui_tests";
        static char* arguments[] = {name, nullptr};
        application = std::make_unique<QApplication>(count, arguments);
        QAccessible::setActive(true); // as if a screen reader were running
    }
    void TearDown() override { application.reset(); }

private:
    std::unique_ptr<QApplication> application;
};

// Google Test runs and frees it.
const auto* const environment = testing::AddGlobalTestEnvironment(new QtEnvironment);

} // namespace

std::string takeWarnings() {
    return std::exchange(warnings, {});
}

} // namespace quorva
