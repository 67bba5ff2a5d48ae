// played_meeting TITLE PEOPLE [DELAY]: an application on the accessibility bus with one window,
// which lists so many people. It answers each question after so many milliseconds. Says "ready"
// when it can be read, and ends when its standard input does.
#include "support/PlayedApplication.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace quorva;

int main(int count, char** arguments) {
    if (count < 3)
        return 2;
    const std::string title = arguments[1];
    const int people = std::atoi(arguments[2]);
    const int delay = count > 3 ? std::atoi(arguments[3]) : 0;
    std::vector<std::string> identifiers;
    for (int i = 0; i < people; ++i)
        identifiers.push_back(std::to_string(i));
    const PlayedChildren everybody(std::move(identifiers));
    const PlayedApplication application(
        [&](const std::string& identifier) -> std::optional<PlayedElement> {
            if (identifier == "root")
                return PlayedElement{.role = played::application, .children = {"window"}};
            if (identifier == "window")
                return PlayedElement{.role = played::frame, .name = title, .children = {"people"}};
            if (identifier == "people")
                return PlayedElement{.role = played::list, .children = everybody};
            return PlayedElement{.role = played::listItem, .name = "Person " + identifier};
        },
        "gtk", [&](const PlayedQuestion&) { return PlayedTreatment{.delay = delay}; });
    std::puts("ready");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}
