#include "platform/linux/drill/DrillMode.h"

#include "platform/linux/drill/DrillWindow.h"

#include <array>
#include <cstdio>
#include <exception>
#include <string>
#include <unistd.h>

namespace quorva {
namespace {

constexpr int failed = 1;

void say(std::string_view line) {
    std::printf("%.*s\n", static_cast<int>(line.size()), line.data());
    std::fflush(stdout);
}

int showWindow(const std::vector<std::string_view>& texts) {
    try {
        DrillWindow window(std::string(texts.front()), {texts.begin() + 1, texts.end()});
        say(drillReady);
        window.showUntilEnd(STDIN_FILENO);
        return 0;
    } catch (const std::exception& failure) {
        say(failure.what());
        return failed;
    }
}

int doNothing() {
    say(drillReady);
    std::array<char, 64> bytes{};
    while (::read(STDIN_FILENO, bytes.data(), bytes.size()) > 0) {
    }
    return 0;
}

} // namespace

std::optional<int> runAsDrillStandIn(const std::vector<std::string_view>& arguments) {
    if (arguments.size() < 2 || arguments.front() != drillMode)
        return std::nullopt;
    if (arguments[1] == "window" && arguments.size() > 2)
        return showWindow({arguments.begin() + 2, arguments.end()});
    return arguments[1] == "program" ? doNothing() : failed;
}

} // namespace quorva
