// Chromium, and what is built on it, lets the content of a page go stale while the page is out of
// sight, and no state says so. Asked what is at a point, the page brings its tree up to date: the
// usual signals follow within a tenth of a second. Other programs just answer.
// Protocol: org.a11y.atspi.Component, as at-spi2-core 2.46 describes it.
#pragma once

#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiTree.h"

namespace quorva {

/// Milliseconds that a page needs to come up to date.
inline constexpr guint timeToComeUpToDate = 250;

/// Rouses a page. `reply` is called once, with null if the page does not answer, as AtspiCalls
/// does.
void rouse(AtspiCalls& calls, const AtspiReference& page, AtspiCalls::Reply reply);

/// Rouses the frames within the pages of a tree, which have to be asked themselves if they are of
/// another site; 32 at most.
void rouseFrames(AtspiCalls& calls, const AtspiTree& tree);

} // namespace quorva
