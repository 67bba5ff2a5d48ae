// An application on the accessibility bus, played by a test: it answers from a script, on a thread
// of its own, as well or as badly as the script says.
#pragma once

#include "platform/linux/glib/Handles.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quorva {

/// The numbers of the AT-SPI roles that scripts need.
namespace played {
inline constexpr std::uint32_t application = 75;
inline constexpr std::uint32_t frame = 23;
inline constexpr std::uint32_t panel = 39;
inline constexpr std::uint32_t tab = 37;
inline constexpr std::uint32_t tabList = 38;
inline constexpr std::uint32_t internalFrame = 28;
inline constexpr std::uint32_t list = 31;
inline constexpr std::uint32_t listItem = 32;
inline constexpr std::uint32_t paragraph = 73;
inline constexpr std::uint32_t document = 95;
} // namespace played

/// The identifiers of an element's children; copies share them.
class PlayedChildren {
public:
    PlayedChildren() = default;
    PlayedChildren(std::initializer_list<std::string> identifiers)
        : PlayedChildren(std::vector(identifiers)) {}
    PlayedChildren(std::vector<std::string> identifiers)
        : all(std::make_shared<const std::vector<std::string>>(std::move(identifiers))) {}

    [[nodiscard]] const std::vector<std::string>& operator*() const { return *all; }

private:
    std::shared_ptr<const std::vector<std::string>> all =
        std::make_shared<const std::vector<std::string>>();
};

/// An element as it is shown. Its identifier is the last part of its object path.
struct PlayedElement {
    std::uint32_t role = played::panel;
    std::string name = {};
    std::string text = {};
    std::string url = {}; ///< of the application: the address of its own socket
    PlayedChildren children = {};
    std::optional<std::int32_t> childCount = {}; ///< if it lies about its children
    bool isShowing = true;
    bool managesDescendants = false;
};

/// A method call that has arrived.
struct PlayedQuestion {
    std::string element;
    std::string method; ///< of a property: its name, or "GetAll"
};

/// What the application does with a question instead of answering from the script.
struct PlayedTreatment {
    enum class Kind { answer, swallow, vanished, reply };
    Kind kind = Kind::answer;
    GVariant* reply = nullptr; ///< floating: what it answers instead
    int delay = 0;             ///< milliseconds; it does nothing else meanwhile
};

/// Constructed and used by any one thread.
class PlayedApplication {
public:
    /// The element of an identifier, "root" for the application; nothing when there is none.
    using Script = std::function<std::optional<PlayedElement>(const std::string& identifier)>;
    using Treat = std::function<PlayedTreatment(const PlayedQuestion& question)>;

    /// Joins the accessibility bus of the session, and waits until the registry lists it. Both
    /// callables are called on its thread.
    PlayedApplication(Script script, std::string toolkit, Treat treat = nullptr);

    /// Leaves the bus.
    ~PlayedApplication();

    PlayedApplication(const PlayedApplication&) = delete;
    PlayedApplication& operator=(const PlayedApplication&) = delete;

    /// Sets what it does with questions from now on.
    void treat(Treat treat);

    /// Sets the script from now on.
    void play(Script script);

    /// Sends a signal of an element. For example, `kind` is "Object" and `member`
    /// "ChildrenChanged"; `detail` is the first parameter, and `other` the element that it
    /// concerns, if any.
    void tell(const std::string& element, const std::string& kind, const std::string& member,
              const std::string& detail, const std::string& other = {});

    /// How many questions an element was asked, or all of them with "".
    [[nodiscard]] int questions(const std::string& element = {}) const;

    /// The same for one method, or all of them with "".
    [[nodiscard]] int questions(const std::string& element, const std::string& method) const;
    void clearQuestions();

private:
    void serve(GDBusMessage* message);
    void answer(GDBusMessage* message, const PlayedQuestion& question);
    [[nodiscard]] GVariant* answerOf(const PlayedElement& element, const PlayedQuestion& question,
                                     GVariant* parameters) const;
    [[nodiscard]] GVariant* propertyOf(const PlayedElement& element, const std::string& name) const;
    [[nodiscard]] GVariant* referenceTo(const std::string& identifier) const;

    const std::string toolkit;
    GMainContextPtr context;
    GMainLoopPtr loop;
    GObjectPtr<GDBusConnection> bus;
    guint filter = 0;

    mutable std::mutex mutex; ///< guards the three below
    Script script;
    Treat treatment;
    std::map<std::pair<std::string, std::string>, int> counts;

    std::thread thread;
};

/// The address of the session's accessibility bus, which is started if necessary; empty when there
/// is none.
[[nodiscard]] std::string accessibilityBusAddress();

} // namespace quorva
