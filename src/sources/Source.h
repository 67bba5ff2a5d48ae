// A source of detections: something that is looked at for bots, such as the processes of this
// computer. Each knows its monitor, how well it can look, and what it lists.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "sources/Finding.h"
#include "sources/SourceState.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// What a source is called, and where.
struct SourceProfile {
    std::string_view name;       ///< on the command line and in reports: "process"
    std::string_view place;      ///< in a sentence: "this computer"
    std::string_view allowedAt;  ///< where an allowed product is not told of: "on this computer"
    std::string_view chip;       ///< "Process"
    std::string_view symbol;     ///< of the chip
    std::string_view logName;    ///< in messages of the log
    std::string_view switchedBy; ///< the preference that switches it on; empty: it is always wanted
    std::vector<const FindingKind*> kinds; ///< in the order in which they are listed
};

/// Main thread only.
class Source {
public:
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    const SourceProfile& profile;

    /// How well it can look. Follows what has changed a task later.
    Published<SourceState, Source> state;
    /// What is listed, kind by kind. Follows as above.
    Published<Findings, Source> findings;

    /// A bot appeared, or is gone. Called as a task of its own; may be empty.
    std::function<void(const FindingPtr&)> onAppeared;
    std::function<void(const FindingPtr&)> onGone;

    /// Watches from now on, or no longer. What was found stays listed. A source that may not look
    /// yet begins when it may.
    void setOn(bool isOn);
    [[nodiscard]] bool isOn() const { return mode == Mode::watching; }

    /// Whether it watches: it is on, and may look.
    [[nodiscard]] virtual bool isWatching() const = 0;

    /// Looks once more at the user's wish.
    virtual void refresh() = 0;

    /// Looks once, without watching, and calls `done` once, on the main loop or within this call,
    /// when everything has been looked at that can be, or after 10 seconds.
    void lookOnce(Task done);

    /// After `setOn(true)`: calls `done`, as above, when the first look is over.
    virtual void awaitFirstLook(Task done) = 0;

    /// One line: what was looked at, or why it was not, and what helps.
    [[nodiscard]] virtual std::string detail() const = 0;

    /// What the product of this key in the allow list is called; empty: not a product of this
    /// source.
    [[nodiscard]] virtual std::string productNamed(std::string_view allowKey) const = 0;

protected:
    Source(const SourceProfile& profile, MainLoop& loop);

    [[nodiscard]] virtual bool mayLook() const = 0;
    virtual void startWatching() = 0;
    virtual void stopWatching() = 0;
    virtual void look(Task done) = 0;
    /// The state of a source that is on and may look.
    [[nodiscard]] virtual SourceState sight() const = 0;
    /// Why it may not look: `notAllowed` or `notAvailable`.
    [[nodiscard]] virtual SourceState obstacle() const = 0;
    [[nodiscard]] virtual Findings list() const = 0;

    /// Has the state, or the list, or both, follow fields of the monitor.
    template <typename... Fields>
    void followState(const Fields&... fields) {
        (subscriptions.push_back(fields.observeChanges([this] { schedule(isStateDue); })), ...);
    }
    template <typename... Fields>
    void followList(const Fields&... fields) {
        (subscriptions.push_back(fields.observeChanges([this] { schedule(isListDue); })), ...);
    }
    /// Begins to watch when the field, which tells whether the source may look, says that it may.
    template <typename Field>
    void followPermission(const Field& field) {
        subscriptions.push_back(field.observeChanges(
            [this] { loop.post(lifetime.guard([this] { startIfWanted(); })); }));
        followState(field);
    }

    void appeared(FindingPtr finding);
    void gone(FindingPtr finding);

    /// The state now, without waiting for the task that follows a change.
    [[nodiscard]] SourceState currentState() const;

    MainLoop& loop;
    std::vector<Subscription> subscriptions;

private:
    enum class Mode { off, lookingOnce, watching };

    void startIfWanted();
    void schedule(bool& due);
    void update();

    Mode mode = Mode::off;
    bool isStateDue = false;
    bool isListDue = false;

protected:
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
