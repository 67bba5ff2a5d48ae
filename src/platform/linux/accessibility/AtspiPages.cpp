#include "platform/linux/accessibility/AtspiPages.h"

#include "platform/linux/accessibility/AtspiRousing.h"

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

constexpr std::size_t maxHidden = 64; ///< pages that no window lists
constexpr int maxBlankTries = 3;

} // namespace

struct AtspiPages::Page {
    explicit Page(AtspiReference reference_) : reference(std::move(reference_)) {}

    const AtspiReference reference;
    AtspiReference window; ///< that listed it last
    std::string title;
    std::string url;
    bool isListed = false;
    bool isShown = false;
    bool isGone = false;
    bool isBlank = false; ///< it shows neither an address nor content
    int blankTries = 0;   ///< to have it show them
    gint64 firstRoused = 0;
    TreeExtent extent;                      ///< that is wanted
    std::unique_ptr<AtspiReadTree> content; ///< null when it is not wanted
    bool wasRead = false;

    [[nodiscard]] bool mayShowSoon() const { return isBlank && blankTries < maxBlankTries; }
};

AtspiPages::AtspiPages(AtspiCalls& calls_, AtspiApplicationTraits& traits_)
    : calls(calls_), traits(traits_) {}

AtspiPages::~AtspiPages() = default;

AtspiPages::Page& AtspiPages::pageOf(const AtspiReference& reference) {
    const auto known = std::find_if(pages.begin(), pages.end(),
                                    [&](const auto& page) { return page->reference == reference; });
    return known != pages.end() ? **known : *pages.emplace_back(std::make_unique<Page>(reference));
}

/// Firefox lists the pages of all tabs. Chromium takes those in the background out of its windows,
/// but they go on to answer.
void AtspiPages::update(const std::vector<Listed>& listed, const ReadingPlan& plan) {
    const bool mayHide = traits.toolkit == AtspiToolkit::chromium;
    windows.clear();
    for (const auto& page : pages)
        page->isListed = page->isShown = false;
    for (const auto& [window, nodes] : listed) {
        windows.push_back(window);
        for (const auto* const node : nodes) {
            auto& page = pageOf(node->reference);
            page.window = window;
            page.title = node->content.title;
            page.url = node->content.url;
            page.isListed = true;
            page.isShown = node->isShowing;
            page.isBlank = mayHide && node->content.url.empty() && node->childCount == 0;
        }
    }
    std::size_t hidden = 0;
    std::erase_if(pages, [&](const auto& page) {
        return page->isGone || (!page->isListed && (!mayHide || !page->content || !page->wasRead ||
                                                    ++hidden > maxHidden));
    });
    for (const auto& page : pages) {
        page->extent = plan.page(page->title, page->url);
        if (page->extent.maxElements == 0) {
            page->content.reset();
            page->wasRead = false;
        } else if (!page->content) {
            page->content = std::make_unique<AtspiReadTree>(calls, traits, page->reference);
        }
    }
}

bool AtspiPages::isAnyWanted() const {
    return std::any_of(pages.begin(), pages.end(),
                       [](const auto& page) { return page->content || page->mayShowSoon(); });
}

bool AtspiPages::isAnyRousing() const {
    return std::any_of(pages.begin(), pages.end(), [](const auto& page) {
        return page->mayShowSoon() || (page->content && !page->wasRead && page->firstRoused != 0);
    });
}

bool AtspiPages::isAnyBlank() const {
    return std::any_of(pages.begin(), pages.end(),
                       [](const auto& page) { return page->mayShowSoon(); });
}

void AtspiPages::read(bool polls, const Task& done) {
    readNext(0, polls, done);
}

void AtspiPages::readNext(std::size_t index, bool polls, const Task& done) {
    while (index < pages.size() && !pages[index]->content && !pages[index]->mayShowSoon())
        ++index;
    if (index == pages.size())
        return done();
    auto& page = *pages[index];
    if (polls && page.content) // Chromium does not signal every navigation of a frame
        page.content->tree.invalidateFrames();
    const auto next =
        lifetime.guard([this, index, polls, done] { readNext(index + 1, polls, done); });
    if (traits.toolkit == AtspiToolkit::chromium && (polls || !page.wasRead))
        rousePage(page, next);
    else
        readContent(page, next);
}

/// A page that does not answer any more, and that no window lists, has gone.
void AtspiPages::rousePage(Page& page, Task next) {
    rouse(calls, page.reference,
          lifetime.guard([this, &page, next = std::move(next)](GVariant* reply) {
              page.isGone = reply == nullptr && !page.isListed;
              if (page.mayShowSoon())
                  ++page.blankTries;
              const auto now = g_get_monotonic_time();
              if (page.firstRoused == 0)
                  page.firstRoused = now;
              const bool isReady = now - page.firstRoused >= 1000 * gint64{timeToComeUpToDate};
              if (page.isGone || !page.content || !isReady)
                  return next();
              rouseFrames(calls, page.content->tree);
              readContent(page, next);
          }));
}

/// The address of a page that no window lists is its own to tell.
void AtspiPages::readContent(Page& page, Task next) {
    auto& tree = page.content->tree;
    auto& reader = page.content->reader;
    page.content->refresh();
    tree.setScope(page.extent, AtspiTree::Texts::all);
    tree.invalidateDocuments();
    reader.read([&page, next = std::move(next)] {
        page.wasRead = true;
        const auto& document = page.content->tree.root()->content;
        page.isGone = !page.isListed && document.role == AccessibilityRole::unreadable;
        if (!page.isListed && !page.isGone) {
            page.title = document.title;
            page.url = document.url;
        }
        next();
    });
}

bool AtspiPages::invalidate(const AtspiEvent& event) {
    bool isPart = false;
    for (const auto& page : pages)
        isPart = (page->content && page->content->tree.invalidate(event)) || isPart;
    if (isPart || event.change != AtspiChange::document)
        return isPart;
    for (const auto& page : pages) // a document that nobody knows has taken the place of a frame's
        if (page->content)
            page->content->tree.invalidateFrames();
    return isAnyWanted();
}

void AtspiPages::expire() {
    for (const auto& page : pages)
        if (page->content)
            page->content->expire();
}

std::vector<AccessiblePage> AtspiPages::of(const AtspiReference& window, bool isFirstWindow,
                                           bool& isAgain) {
    std::vector<AccessiblePage> published;
    for (const auto& page : pages) {
        const bool isOrphan =
            std::find(windows.begin(), windows.end(), page->window) == windows.end();
        if (!page->isGone && (page->window == window || (isFirstWindow && isOrphan)))
            published.push_back(publish(*page, isAgain));
    }
    return published;
}

AccessiblePage AtspiPages::publish(Page& page, bool& isAgain) {
    AccessiblePage shown{.title = page.title, .url = page.url, .isShown = page.isShown};
    if (page.isBlank) {
        if (!page.mayShowSoon())
            shown.state = ReadState::read; // and there is nothing
        return shown;
    }
    if (!page.content || !page.wasRead)
        return shown;
    const auto tree = page.content->tree.snapshot();
    if (page.content->awaitsTexts(*tree)) {
        isAgain = true;
        return shown;
    }
    if (tree->role == AccessibilityRole::unreadable) {
        shown.state = ReadState::couldNotBeRead;
        shown.problem = "it does not answer as a page should";
        page.content.reset();
        page.wasRead = false;
        return shown;
    }
    shown.state = ReadState::read;
    shown.extent = page.content->tree.extent();
    shown.tree = tree;
    return shown;
}

} // namespace quorva
