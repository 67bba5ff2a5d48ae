// catalogue-names: prints the process names of all products as one extended regular expression, for
// tools that search by pattern.
#include "catalogue/BotSignatureDatabase.h"

#include <fmt/format.h>

int main() {
    std::string pattern;
    for (const auto& signature : quorva::BotSignatureDatabase::shared().signatures()) {
        for (const auto& name : signature.processNames) {
            pattern += pattern.empty() ? "" : "|";
            for (const char c : name) {
                if (std::string_view(".[]{}()*+?^$|\\").find(c) != std::string_view::npos)
                    pattern += '\\';
                pattern += c;
            }
        }
    }
    fmt::print("{}\n", pattern);
}
