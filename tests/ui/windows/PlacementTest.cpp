// The positions of windows.
#include "ui/windows/Placement.h"

#include <gtest/gtest.h>

namespace quorva {
namespace {

const QRect screen(0, 0, 1440, 900);
const QRect belowPanel(0, 25, 1440, 875); // a panel at the top
const QRect abovePanel(0, 0, 1440, 860);  // a panel at the bottom

TEST(Placement, theAlertIsSixteenFromTheRightAndEightFromTheTop) {
    EXPECT_EQ(alertPosition(340, belowPanel), QPoint(1084, 33));
    EXPECT_EQ(alertPosition(340, QRect(1440, 0, 1920, 1080)), QPoint(3004, 8));
}

TEST(Placement, thePopoverStandsAtTheTrayIconOrElseInThePanelsCorner) {
    const QSize popover(360, 500);
    EXPECT_EQ(popoverPosition(popover, QRect(1000, 0, 24, 24), screen, belowPanel),
              QPoint(831, 33));
    EXPECT_EQ(popoverPosition(popover, QRect(1420, 870, 20, 20), screen, abovePanel),
              QPoint(1072, 352));
    EXPECT_EQ(popoverPosition(popover, std::nullopt, screen, belowPanel), QPoint(1072, 33));
    EXPECT_EQ(popoverPosition(popover, std::nullopt, screen, abovePanel), QPoint(1072, 352));
}

TEST(Placement, thePopoverNeverBeginsOutsideTheScreen) {
    const QRect small(100, 50, 300, 200);
    EXPECT_EQ(popoverPosition({360, 500}, QRect(390, 240, 10, 10), small, small), QPoint(108, 58));
    EXPECT_EQ(popoverPosition({100, 100}, QRect(0, 0, 10, 10), small, small), QPoint(108, 58));
}

} // namespace
} // namespace quorva
