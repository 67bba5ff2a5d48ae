#include "platform/linux/drill/DrillFolder.h"

#include <cerrno>
#include <cstdlib>

namespace quorva {

DrillFolder::DrillFolder(const std::filesystem::path& place) {
    std::error_code ignored; // creating the folder in it fails then
    std::filesystem::create_directories(place, ignored);
    auto path = (place / "quorva-drill-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr)
        throw std::system_error(errno, std::system_category(), place.string());
    folder = std::move(path);
}

DrillFolder::~DrillFolder() {
    std::error_code ignored; // there is nobody to report to
    std::filesystem::remove_all(folder, ignored);
}

} // namespace quorva
