// A source of detections: something that is looked at for bots, such as the processes of this
// computer. Each knows its monitor, how well it can look, and what it lists.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "base/Time.h"
#include "sources/Finding.h"
#include "sources/SourceState.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// The names of a source in the places where it is mentioned.
struct SourceProfile {
    std::string_view name;       ///< on the command line and in reports: "process"
    std::string_view place;      ///< in a sentence: "this computer"
    std::string_view allowedAt;  ///< follows an allowed product's name: "on this computer"
    std::string_view chip;       ///< "Process"
    std::string_view symbol;     ///< of the chip
    std::string_view logName;    ///< in log messages
    std::string_view switchedBy; ///< the preference that switches it on; empty: always on
    std::vector<const FindingKind*> kinds; ///< in the order in which they are listed
};

/// Main thread only.
class Source {
public:
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    const SourceProfile& profile;

    /// How well it can look. Updated one task after the monitor changes.
    Published<SourceState, Source> state;
    /// Its findings, kind by kind. Updated as above.
    Published<Findings, Source> findings;

    /// Called as a task of its own when a finding appears, or is gone. May be empty.
    std::function<void(const FindingPtr&)> onAppeared;
    std::function<void(const FindingPtr&)> onGone;
    /// Called as a task of its own when something goes out of sight that was seen before, or should
    /// be. `text` is one sentence for people, which says what is not seen from now on, and what
    /// helps. It is stored, so it holds no title of a window and no name of a person. May be empty.
    std::function<void(const std::string& text)> onSightLost;

    /// Starts or stops watching. Findings stay listed. A source that may not look yet starts as
    /// soon as it may.
    void setOn(bool isOn);
    [[nodiscard]] bool isOn() const { return mode == Mode::watching; }

    /// Whether it is watching: it is on and may look.
    [[nodiscard]] virtual bool isWatching() const = 0;

    /// Looks once more at the user's wish. Only for a source that is on.
    virtual void refresh() = 0;

    /// Looks once, without watching. Calls `done` once, on the main loop or within this call, when
    /// the look is complete or after 10 seconds.
    void lookOnce(Task done);

    /// After `setOn(true)`: calls `done`, as above, when the first look is complete.
    void awaitFirstLook(Task done);

    /// One line: what was looked at, or why it was not, and what helps.
    [[nodiscard]] virtual std::string detail() const = 0;

    /// The name of the product with this key in the allow list; empty: not a product of this
    /// source.
    [[nodiscard]] virtual std::string productNamed(std::string_view allowKey) const = 0;

protected:
    Source(const SourceProfile& profile, MainLoop& loop);

    [[nodiscard]] virtual bool mayLook() const = 0;
    /// Whether its monitor may be started although it may not look yet, to wait until it may.
    [[nodiscard]] virtual bool mayWait() const { return false; }
    virtual void startWatching() = 0;
    virtual void stopWatching() = 0;
    /// Look once, or wait for the first look of the monitor; `done` is called as above.
    virtual void look(Task done) = 0;
    virtual void awaitLook(Task done) = 0;
    /// The state of a source that is on and may look.
    [[nodiscard]] virtual SourceState sight() const = 0;
    /// Why it may not look: `notAllowed` or `notAvailable`.
    [[nodiscard]] virtual SourceState obstacle() const = 0;
    [[nodiscard]] virtual Findings list() const = 0;

    /// Update the state, or the list, when this field changes.
    template <typename Field>
    void followState(const Field& field) {
        subscriptions.push_back(field.observeChanges([this] { schedule(isStateDue); }));
    }
    /// The same for the time of the last look. Before it is set again after a start, the source has
    /// not looked, whatever it saw before it was stopped.
    template <typename Owner>
    void followState(const Published<std::optional<Time>, Owner>& lastLook) {
        subscriptions.push_back(lastLook.observe([this](const auto&) {
            awaitsLook = false;
            schedule(isStateDue);
        }));
        tellsOfLooks = true;
    }
    template <typename Field>
    void followList(const Field& field) {
        subscriptions.push_back(field.observeChanges([this] { schedule(isListDue); }));
    }
    /// Updates the state and starts watching when this field, on which `mayLook` depends, changes.
    template <typename Field>
    void followPermission(const Field& field) {
        subscriptions.push_back(field.observeChanges(
            [this] { loop.post(lifetime.guard([this] { startIfWanted(); })); }));
        followState(field);
    }

    void appeared(FindingPtr finding);
    void gone(FindingPtr finding);
    /// Tells of what is out of sight from now on. The source decides how often.
    void sightLost(std::string text);

    MainLoop& loop;
    std::vector<Subscription> subscriptions;

private:
    enum class Mode { off, lookingOnce, watching };

    [[nodiscard]] SourceState currentState() const;
    [[nodiscard]] Task afterUpdate(Task done);
    void startIfWanted();
    void schedule(bool& due);
    void update();

    Mode mode = Mode::off;
    bool isStateDue = false;
    bool isListDue = false;
    bool tellsOfLooks = false;
    bool awaitsLook = false; ///< it was started, and has not looked since

protected:
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
