// Windows of applications in memory. Shows of them what a reading plan asks for, as if a reader had
// just read it.
#pragma once

#include "base/MainLoop.h"
#include "platform/AccessibilityTree.h"
#include "support/AccessibleElements.h"

#include <cerrno>
#include <map>
#include <utility>

namespace quorva {

class FakeAccessibilityTree final : public AccessibilityTree {
public:
    /// The loop must outlive the tree.
    explicit FakeAccessibilityTree(MainLoop& loop_) : loop(loop_) {}

    struct Window {
        std::string title;
        AccessibleElementPtr tree;
        std::string problem = {}; ///< not empty: it cannot be read
        bool isAnswering = true;  ///< false: it is being read forever
        bool isReadWholly = true; ///< false: only the list of its pages has been read
        Elements behind = {};     ///< pages that it does not show
        std::vector<AccessibleTab> tabs = {};
    };
    struct Application {
        std::vector<Window> windows;
        std::string problem = {};
        bool isAnswering = true;
        int silentInstances = 0;
        int startingInstances = 0;
    };
    struct Enabling {
        ProcessIdentifier process;
        AccessibilitySwitch which;
        bool operator==(const Enabling&) const = default;
    };

    std::map<ProcessIdentifier, Application> applications; ///< as they are now
    bool isOn = true;
    int enableError = 0;
    std::vector<Enabling> enabled;
    std::vector<ReadingRequest> requested; ///< the last request
    CallbackList<> trustChanges;
    CallbackList<> reads;

    [[nodiscard]] bool isTrusted() const override { return isOn; }
    [[nodiscard]] Subscription onTrustChange(Task callback) override {
        return trustChanges.add(std::move(callback));
    }
    bool grantsTrust = true; ///< whether asking switches it on
    void requestTrust(std::function<void(bool)> done) override {
        if (grantsTrust && !std::exchange(isOn, true))
            trustChanges.call();
        done(isOn);
    }
    int enable(ProcessIdentifier process, AccessibilitySwitch which) override {
        enabled.push_back({process, which});
        return enableError;
    }

    /// Whatever is requested has been read at once; `onRead` follows for processes that are new.
    void request(std::vector<ReadingRequest> requests) override {
        std::map<ProcessIdentifier, Readings> kept;
        bool isNew = false;
        for (const auto& [process, plan] : requests) {
            isNew = isNew || !readings.contains(process);
            kept[process] = std::move(readings[process]);
        }
        readings = std::move(kept);
        requested = std::move(requests);
        if (isNew)
            loop.post([this] { reads.call(); });
    }

    [[nodiscard]] AccessibleWindows windows(ProcessIdentifier process) const override {
        for (const auto& each : requested)
            if (each.process == process)
                return read(each);
        return {};
    }

    [[nodiscard]] Subscription onRead(Task callback) override {
        return reads.add(std::move(callback));
    }

private:
    /// Read once, so that the same source gives the same object.
    struct Reading {
        AccessibleElementPtr source;
        TreeExtent extent;
        AccessibleElementPtr tree;
    };
    using Readings = std::vector<Reading>;

    [[nodiscard]] AccessibleWindows read(const ReadingRequest& asked) const {
        const auto found = applications.find(asked.process);
        if (found == applications.end())
            return {.state = ReadState::couldNotBeRead, .problem = "it shows nothing"};
        const auto& application = found->second;
        if (!application.problem.empty())
            return {.state = ReadState::couldNotBeRead, .problem = application.problem};
        if (!application.isAnswering)
            return {};
        AccessibleWindows answer{.state = ReadState::read,
                                 .silentInstances = application.silentInstances,
                                 .startingInstances = application.startingInstances};
        for (const auto& window : application.windows)
            answer.windows.push_back(read(window, *asked.plan, readings[asked.process]));
        return answer;
    }

    static AccessibleWindow read(const Window& window, const ReadingPlan& plan,
                                 Readings& readings) {
        AccessibleWindow answer{.title = window.title};
        const bool isBrowser = plan.outline.maxElements > 0;
        const auto extent = isBrowser ? plan.outline : plan.window(window.title);
        if (extent.maxElements == 0)
            return answer;
        if (!window.problem.empty()) {
            answer.state = ReadState::couldNotBeRead;
            answer.problem = window.problem;
        }
        if (!window.problem.empty() || !window.isAnswering)
            return answer;
        answer.state = ReadState::read;
        if (!isBrowser) {
            answer.extent = extent;
            answer.tree = reading(window.tree, extent, readings);
            return answer;
        }
        answer.tabs = window.tabs;
        const auto add = [&](const AccessibleElementPtr& document, bool isShown) {
            auto& page = answer.pages.emplace_back(
                AccessiblePage{.title = document->title, .url = document->url, .isShown = isShown});
            const auto wanted = plan.page(page.title, page.url);
            if (wanted.maxElements == 0 || !window.isReadWholly)
                return;
            page.state = ReadState::read;
            page.extent = wanted;
            page.tree = reading(document, wanted, readings);
        };
        if (window.tree)
            addPages(window.tree, plan.outline, 0, add);
        for (const auto& document : window.behind)
            add(document, false);
        return answer;
    }

    template <typename Add>
    static void addPages(const AccessibleElementPtr& element, const TreeExtent& outline, int depth,
                         const Add& add) {
        if (depth >= outline.maxDepth)
            return;
        if (element->role == AccessibilityRole::webArea)
            return add(element, true);
        for (const auto& child : element->children)
            if (outline.descends(element->role, child->role, depth))
                addPages(child, outline, depth + 1, add);
    }

    static AccessibleElementPtr reading(const AccessibleElementPtr& source,
                                        const TreeExtent& extent, Readings& readings) {
        for (const auto& known : readings)
            if (known.source == source && known.extent == extent)
                return known.tree;
        int budget = extent.maxElements;
        auto tree = cut(*source, extent, 0, budget);
        readings.push_back({source, extent, tree});
        return tree;
    }

    static AccessibleElementPtr cut(const AccessibleElement& element, const TreeExtent& extent,
                                    int depth, int& budget) {
        --budget;
        auto copy = std::make_shared<AccessibleElement>(element);
        copy->children.clear();
        if (depth + 1 < extent.maxDepth)
            for (const auto& child : element.children)
                if (budget > 0 && (extent.descends == nullptr ||
                                   extent.descends(element.role, child->role, depth)))
                    copy->children.push_back(cut(*child, extent, depth + 1, budget));
        return copy;
    }

    MainLoop& loop;
    mutable std::map<ProcessIdentifier, Readings> readings;
};

} // namespace quorva
