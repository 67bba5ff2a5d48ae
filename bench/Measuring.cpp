#include "Measuring.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva::bench {

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Summary::add(std::string what, double figure, std::string unit, double bound) {
    const auto number = [&](double value) { return fmt::format("{:.2f} {}", value, unit); };
    lines.push_back({
        .what = std::move(what),
        .figure = number(figure),
        .bound = bound > 0 ? number(bound) : "-",
        .verdict = bound > 0 ? (figure <= bound ? "within" : "OVER") : "",
    });
}

std::string Summary::toText() const {
    std::size_t widest = 0;
    for (const auto& line : lines)
        widest = std::max(widest, line.what.size());
    std::string text;
    const auto row = [&](const Line& line) {
        text += fmt::format("{:<{}}  {:>12}  {:>12}  {}\n", line.what, widest, line.figure,
                            line.bound, line.verdict);
    };
    row({.what = "what (medians)", .figure = "figure", .bound = "bound", .verdict = ""});
    for (const auto& line : lines)
        row(line);
    return text;
}

} // namespace quorva::bench
