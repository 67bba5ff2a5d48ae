// The texts of the objection templates that the user can choose from.
#pragma once

#include "catalogue/Enumerations.h"

#include <string_view>

namespace quorva {

struct ObjectionText {
    ObjectionTemplate objectionTemplate;
    std::string_view displayTitle; ///< the template's name in the user interface and in the log
    std::string_view templateDescription; ///< one line that explains it
    std::string_view writtenStatement;    ///< for the meeting's chat
    std::string_view spokenStatement;     ///< spoken aloud; shorter
};

/// The texts of a template. Callable from any thread.
[[nodiscard]] const ObjectionText& objectionText(ObjectionTemplate which);

} // namespace quorva
