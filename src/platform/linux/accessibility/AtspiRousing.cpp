#include "platform/linux/accessibility/AtspiRousing.h"

#include <utility>

namespace quorva {
namespace {

constexpr auto atPoint = "GetAccessibleAtPoint";
constexpr std::uint32_t onScreen = 0; ///< kinds of coordinates
constexpr std::uint32_t inParent = 2;
constexpr int anywhere = -1;
constexpr int pointInFrame = 5;
constexpr int maxFrames = 32;

} // namespace

void rouse(AtspiCalls& calls, const AtspiReference& page, AtspiCalls::Reply reply) {
    calls.send({page, atspi::component, atPoint, {}, {anywhere, anywhere}, {onScreen}},
               std::move(reply));
}

void rouseFrames(AtspiCalls& calls, const AtspiTree& tree) {
    int asked = 0;
    for (const auto* const document : tree.documents())
        if (!document->isPage() && document->parent != nullptr && ++asked <= maxFrames)
            calls.send({document->reference,
                        atspi::component,
                        atPoint,
                        {},
                        {pointInFrame, pointInFrame},
                        {inParent}},
                       [](GVariant*) {});
}

} // namespace quorva
