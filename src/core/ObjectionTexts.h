// What an objection says, in each of the templates that the user can choose from.
#pragma once

#include "catalogue/Enumerations.h"

#include <string_view>

namespace quorva {

struct ObjectionText {
    ObjectionTemplate objectionTemplate;
    std::string_view displayTitle;        ///< the template's name, for people and for the log
    std::string_view templateDescription; ///< one line beneath it
    std::string_view writtenStatement;    ///< for the meeting's chat
    std::string_view spokenStatement;     ///< for those who listen
};

/// The texts of a template. Callable from any thread.
[[nodiscard]] const ObjectionText& objectionText(ObjectionTemplate which);

} // namespace quorva
