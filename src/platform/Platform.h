// The services of the computer, gathered for the place where a program is put together. Classes
// take the services they use, never this bundle.
#pragma once

#include "platform/Applications.h"
#include "platform/Log.h"
#include "platform/MainLoop.h"
#include "platform/ProcessTable.h"

namespace quorva {

struct Platform {
    MainLoop& loop;
    Log& log;
    ProcessTable& processTable;
    Applications& applications;
};

} // namespace quorva
