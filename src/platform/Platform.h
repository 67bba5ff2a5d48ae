// The computer's services, bundled for the code that constructs a program. Classes take the
// services they use, never this bundle.
#pragma once

#include "base/MainLoop.h"
#include "platform/AccessibilityTree.h"
#include "platform/Applications.h"
#include "platform/CalendarStore.h"
#include "platform/Log.h"
#include "platform/ProcessTable.h"
#include "platform/Sha256.h"

namespace quorva {

struct Platform {
    MainLoop& loop;
    Log& log;
    ProcessTable& processTable;
    Applications& applications;
    CalendarStore& calendars;
    AccessibilityTree& accessibility;
    Sha256 sha256;
};

} // namespace quorva
