// Applications that misbehave. Whatever they answer, the reading ends, stays within the requested
// extent and costs few questions, and another application is read in time.
#include "AccessibilityTest.h"
#include "support/TemporaryFolder.h"

#include <arpa/inet.h>
#include <filesystem>
#include <limits>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace quorva {
namespace {

using Script = PlayedApplication::Script;
using Treat = PlayedApplication::Treat;

/// An application with one window, "Meeting", whose content comes from another script: "top" and
/// the elements below it.
Script inWindow(Script content) {
    return [content](const std::string& identifier) -> std::optional<PlayedElement> {
        if (identifier == "root")
            return PlayedElement{.role = played::application, .children = {"window"}};
        if (identifier == "window")
            return PlayedElement{.role = played::frame, .name = "Meeting", .children = {"top"}};
        return content(identifier);
    };
}

PlayedElement person(const std::string& name) {
    return {.role = played::listItem, .name = name, .text = name};
}

PlayedChildren numbers(int count) {
    std::vector<std::string> all;
    for (int i = 0; i < count; ++i)
        all.push_back("n" + std::to_string(i));
    return all;
}

/// "top" with children that have none.
Script aList(const PlayedChildren& children, std::optional<std::int32_t> count = {},
             bool managesDescendants = false) {
    return inWindow([=](const std::string& identifier) {
        return identifier == "top" ? PlayedElement{.role = played::list,
                                                   .children = children,
                                                   .childCount = count,
                                                   .managesDescendants = managesDescendants}
                                   : person(identifier);
    });
}

/// Makes a treatment when it is needed: some take time to make.
using Prepare = std::function<Treat()>;

/// Answers one kind of questions about the window's content, or all with "", with something else.
Prepare answering(const std::string& method, const std::function<GVariant*()>& make) {
    return [=]() -> Treat {
        const std::shared_ptr<GVariant> reply(g_variant_ref_sink(make()), g_variant_unref);
        g_variant_get_data(reply.get()); // serialises it once
        return [=](const PlayedQuestion& question) -> PlayedTreatment {
            if (question.element == "root" || question.element == "window" ||
                (!method.empty() && question.method != method))
                return {};
            return {PlayedTreatment::Kind::reply, reply.get()};
        };
    };
}

Prepare answering(const std::string& method, const char* reply) {
    return answering(method, [reply] { return g_variant_new_parsed(reply); });
}

/// More children than their number promises.
GVariant* crowd(int children) {
    GVariantBuilder all;
    g_variant_builder_init(&all, G_VARIANT_TYPE("a(so)"));
    for (int i = 0; i < children; ++i)
        g_variant_builder_add(&all, "(so)", "",
                              ("/org/a11y/atspi/accessible/n" + std::to_string(i)).c_str());
    return g_variant_new("(a(so))", &all);
}

/// Bytes in place of a text.
GVariant* bytes(std::size_t count) {
    const std::vector<char> zeros(count);
    return g_variant_new("(@ay)",
                         g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, zeros.data(), count, 1));
}

/// Every third question is about an element that has just gone.
Treat vanishing() {
    return [asked = std::make_shared<int>(0)](const PlayedQuestion& question) -> PlayedTreatment {
        const bool isContent = question.element != "root" && question.element != "window";
        return {isContent && ++*asked % 3 == 0 ? PlayedTreatment::Kind::vanished
                                               : PlayedTreatment::Kind::answer};
    };
}

struct Hostility {
    const char* name;
    Script script;
    Prepare prepare = nullptr;
    const char* toolkit = "gtk";
    std::size_t elements = 0; ///< of the window, as a walk would meet them; 0 for any number
};

void PrintTo(const Hostility& hostility, std::ostream* out) {
    *out << hostility.name;
}

class HostileApplicationTest : public AccessibilityTest,
                               public testing::WithParamInterface<Hostility> {
protected:
    [[nodiscard]] ReadState stateOfWindow() const {
        const auto windows = tree.windows(self);
        if (windows.state != ReadState::read || windows.windows.empty())
            return windows.state;
        return windows.windows.front().state;
    }
};

const Hostility hostilities[] = {
    {"cycle", inWindow([](const std::string& identifier) {
         return PlayedElement{.name = identifier, .children = {identifier == "top" ? "a" : "top"}};
     }),
     nullptr, "gtk", 30},
    {"wideCycle", inWindow([children = numbers(300)](const std::string& identifier) {
         return PlayedElement{.name = identifier, .children = children};
     }),
     nullptr, "gtk", 2000},
    {"ownAncestor", inWindow([](const std::string&) {
         return PlayedElement{.children = {"window", "top", "root"}};
     }),
     nullptr, "gtk", 2000},
    {"childListedTwice", aList({"ann", "ann", "ben"}), nullptr, "gtk", 5},
    {"millionChildren", aList(numbers(3000), 1'000'000), nullptr, "gtk", 2000},
    {"millionChildrenOfWhichNoneIsThere", aList({}, 1'000'000), nullptr, "gtk", 2},
    {"millionChildrenMadeUpWhenAskedFor", aList(numbers(3000), 1'000'000, true), nullptr, "gtk", 2},
    {"childrenBeyondTheirNumber", aList({}, 3),
     answering("GetChildren", [] { return crowd(200'000); }), "gtk", 2000},
    {"fewerChildrenThanTheirNumber", aList({"ann"}, 5), nullptr, "gtk", 3},
    {"noNumberOfChildren", aList({"ann"}, -1), nullptr, "gtk", 3},
    {"numberBelowAll", aList({"ann"}, std::numeric_limits<std::int32_t>::min()), nullptr, "gtk", 3},
    {"deep", inWindow([](const std::string& identifier) {
         const auto level = identifier == "top" ? 0 : std::stoi(identifier.substr(1));
         PlayedElement element;
         if (level < 10'000)
             element.children = {"d" + std::to_string(level + 1)};
         return element;
     }),
     nullptr, "gtk", 30},
    {"longTexts", inWindow([](const std::string& identifier) {
         return identifier == "top" ? PlayedElement{.children = numbers(60)}
                                    : person(std::string(1'000'000, 'x'));
     }),
     nullptr, "gtk", 62},
    {"longTextsOfAnotherToolkit", inWindow([](const std::string& identifier) {
         return identifier == "top" ? PlayedElement{.children = numbers(60)}
                                    : person(std::string(1'000'000, 'x'));
     }),
     nullptr, "Qt", 62},
    {"vanishing", aList(numbers(200)), vanishing},
    {"vanishingOfAnotherToolkit", aList(numbers(200)), vanishing, "Qt"},
    {"nonsense", aList({"ann", "ben"}), answering("", "(@x 1,)"), "gtk", 2},
    {"nonsenseForRoles", aList({"ann", "ben"}), answering("GetRole", "('list',)"), "gtk", 4},
    {"nonsenseForProperties", aList({"ann", "ben"}), answering("GetAll", "(@a{sv} {},)"), "gtk", 4},
    {"nonsenseWithinProperties", aList({"ann", "ben"}),
     answering("GetAll", "({'Name': <1>, 'ChildCount': <'many'>, 'Description': <@ay []>},)"),
     "gtk", 4},
    {"nonsenseForChildren", aList({"ann", "ben"}), answering("GetChildren", "([('a', 'b')],)"),
     "gtk", 2},
    {"nonsenseForOwnersOfChildren", aList({"ann", "ben"}),
     answering("GetChildren", "([('no name', objectpath '/a'), ('', '/org/a11y/atspi/null')],)"),
     "gtk", 2},
    {"childrenOfTheBusItself", aList({"ann", "ben"}),
     answering("GetChildren", "([('org.freedesktop.DBus', objectpath '/org/freedesktop/DBus')],)"),
     "gtk", 3},
    {"crowdOfBytes", aList(numbers(30)), answering("GetText", [] { return bytes(2'000'000); }),
     "gtk", 32},
    {"nestedVariants", aList({"ann"}),
     answering("GetText", "(<<<<<<<<<<<<<<<<<<<<1>>>>>>>>>>>>>>>>>>>>,)"), "gtk", 3},
    {"nonsenseForTexts", aList({"ann", "ben"}), answering("GetText", "(7,)"), "gtk", 4},
    {"nonsenseForNamesOfRoles", aList({"ann", "ben"}), answering("GetLocalizedRoleName", "()"),
     "gtk", 4},
    {"nonsenseForNames", aList({"ann", "ben"}), answering("Name", "(<7>,)"), "Qt", 4},
    {"nonsenseForCounts", aList({"ann", "ben"}), answering("ChildCount", "(<'7'>,)"), "Qt", 2},
};

INSTANTIATE_TEST_SUITE_P(All, HostileApplicationTest, testing::ValuesIn(hostilities),
                         [](const auto& instance) { return std::string(instance.param.name); });

} // namespace

TEST_P(HostileApplicationTest, endsItsReadingAndLeavesTimeForOthers) {
    const auto& hostility = GetParam();
    PlayedApplication application(hostility.script, hostility.toolkit,
                                  hostility.prepare ? hostility.prepare() : nullptr);
    const PlayedMeeting other("Meeting", 20);
    const std::vector processes{self, other.identifier()};

    request(processes);
    EXPECT_TRUE(comesTo([&] { return readingOf(other.identifier()) != nullptr; }, Seconds(5)));
    ASSERT_TRUE(comesTo([&] { return stateOfWindow() != ReadState::notReadYet; }));
    const auto read = readingOf(self);
    ASSERT_NE(read, nullptr) << tree.windows(self).problem;
    EXPECT_LE(walk(read).size(), static_cast<std::size_t>(maxElements));
    EXPECT_LE(depthOf(*read), maxDepth);
    if (hostility.elements > 0) {
        EXPECT_EQ(walk(read).size(), hostility.elements);
    }
    for (const auto* const element : walk(read))
        EXPECT_LE(std::max(element->title.size(), element->value.size()), 4096U);
    const int first = application.questions();
    EXPECT_LE(first, 5 * (maxElements + 400));

    application.clearQuestions();
    (void)comesToAsking(
        processes, [] { return false; }, Seconds(1.2));
    EXPECT_LE(application.questions(), 30); // the titles of the windows in each of two passes
    EXPECT_EQ(readingOf(self), read);
    RecordProperty("questions", first);
}

TEST_F(AccessibilityTest, neitherStartsAProgramNorGoesToANetworkForAnApplicationsSocket) {
    const TemporaryFolder folder;
    const auto trace = (folder.path / "trace").string();
    const FileDescriptor network(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    sockaddr_in own{.sin_family = AF_INET, .sin_addr = {htonl(INADDR_LOOPBACK)}};
    socklen_t size = sizeof own;
    auto* const address = reinterpret_cast<sockaddr*>(&own);
    ASSERT_EQ(::bind(network.get(), address, size), 0);
    ASSERT_EQ(::listen(network.get(), 1), 0);
    ASSERT_EQ(::getsockname(network.get(), address, &size), 0);
    const auto tcp = "tcp:host=127.0.0.1,port=" + std::to_string(ntohs(own.sin_port));

    for (const auto& hostile :
         {"unixexec:path=/usr/bin/touch,argv1=" + trace, tcp, "unix:path=/nowhere;" + tcp,
          std::string("unix:path=/dev/null"), std::string("nonsense")}) {
        const PlayedApplication application(
            [&, list = aList({"ann"})](const std::string& identifier) {
                auto element = list(identifier);
                if (identifier == "root")
                    element->url = hostile;
                return element;
            },
            "gtk");
        ASSERT_TRUE(comesToAsking({self}, [&] { return readingOf(self) != nullptr; })) << hostile;
        EXPECT_EQ(application.questions("root", "GetApplicationBusAddress"), 1);
        EXPECT_NE(find(readingOf(self), "ann"), nullptr);
        EXPECT_FALSE(std::filesystem::exists(trace));
        EXPECT_LT(::accept(network.get(), nullptr, nullptr), 0) << hostile;
        request({});
    }
}

TEST_F(AccessibilityTest, asksOverTheBusWhereAnApplicationsSocketIsSilent) {
    const TemporaryFolder folder;
    const FileDescriptor silent(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un own{.sun_family = AF_UNIX, .sun_path = {}};
    const auto path = (folder.path / "socket").string();
    ASSERT_LT(path.copy(own.sun_path, sizeof own.sun_path - 1), sizeof own.sun_path - 1);
    ASSERT_EQ(::bind(silent.get(), reinterpret_cast<sockaddr*>(&own), sizeof own), 0);
    ASSERT_EQ(::listen(silent.get(), 1), 0);
    const PlayedApplication application(
        [&, list = aList({"ann"})](const std::string& identifier) {
            auto element = list(identifier);
            if (identifier == "root")
                element->url = "unix:path=" + path;
            return element;
        },
        "gtk");
    request({self});
    EXPECT_TRUE(comesTo([&] { return readingOf(self) != nullptr; }, Seconds(5)));
    EXPECT_NE(find(readingOf(self), "ann"), nullptr);
}

TEST_F(AccessibilityTest, givesUpForAWhileOnAnApplicationThatAnswersTooSlowly) {
    const PlayedMeeting slow("Meeting", 50, 400);
    const PlayedMeeting other("Meeting", 20);
    request({slow.identifier(), other.identifier()});
    EXPECT_TRUE(comesTo([&] { return readingOf(other.identifier()) != nullptr; }, Seconds(5)));
    ASSERT_TRUE(
        comesTo([&] { return tree.windows(slow.identifier()).state == ReadState::couldNotBeRead; },
                Seconds(25)));
    EXPECT_EQ(tree.windows(slow.identifier()).problem, "it answers too slowly");
}

TEST_F(AccessibilityTest, triesAnApplicationAgainThatLostItsQuestions) {
    PlayedApplication application(
        aList(numbers(200)), "gtk", [asked = std::make_shared<int>(0)](const PlayedQuestion&) {
            return PlayedTreatment{++*asked > 100 ? PlayedTreatment::Kind::swallow
                                                  : PlayedTreatment::Kind::answer};
        });
    request({self});
    ASSERT_TRUE(comesTo([&] { return tree.windows(self).state == ReadState::couldNotBeRead; }));
    EXPECT_EQ(tree.windows(self).problem, "it does not answer");
    (void)comesTo([] { return false; }, Seconds(0.5)); // the last question gets lost, too
    application.treat(nullptr);
    EXPECT_TRUE(comesTo([&] { return readingOf(self) != nullptr; }, Seconds(40)));
}

TEST_F(AccessibilityTest, tellsAWindowThatCannotBeReadFromAnEmptyOne) {
    PlayedApplication application(aList({"ann"}), "gtk", [](const PlayedQuestion& question) {
        return PlayedTreatment{question.element == "window" && question.method == "GetRole"
                                   ? PlayedTreatment::Kind::vanished
                                   : PlayedTreatment::Kind::answer};
    });
    request({self});
    ASSERT_TRUE(comesTo([&] { return tree.windows(self).state == ReadState::read; }));
    ASSERT_EQ(tree.windows(self).windows.size(), 1U);
    EXPECT_EQ(tree.windows(self).windows[0].state, ReadState::couldNotBeRead);
    application.treat(nullptr);
    EXPECT_TRUE(comesToAsking({self}, [&] { return readingOf(self) != nullptr; }));
}

TEST_F(AccessibilityTest, readsTheListOfParticipantsThatAChatBeyondTheBudgetPrecedes) {
    PlayedApplication application(
        inWindow([messages = numbers(1'999)](const std::string& identifier) -> PlayedElement {
            if (identifier == "top")
                return {.children = {"chat", "side"}};
            if (identifier == "chat")
                return {.children = messages};
            if (identifier == "side")
                return {.children = {"people"}};
            if (identifier == "people")
                return {.role = played::list, .children = {"ann", "bot"}};
            return person(identifier);
        }),
        "gtk");
    request({self});
    ASSERT_TRUE(comesTo([&] { return readingOf(self) != nullptr; }));
    EXPECT_NE(find(readingOf(self), "bot"), nullptr);
    EXPECT_EQ(walk(readingOf(self)).size(), static_cast<std::size_t>(maxElements));

    const int questions = application.questions();
    application.tell("chat", "Object", "ChildrenChanged", "add", "n7");
    ASSERT_TRUE(comesTo([&] { return application.questions("chat", "GetChildren") > 1; }));
    EXPECT_LT(application.questions(), questions + 500) << "only what has changed is read again";
}

} // namespace quorva
