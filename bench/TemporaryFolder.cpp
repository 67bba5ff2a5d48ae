#include "TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace quorva::bench {

TemporaryFolder::TemporaryFolder() {
    auto name = (std::filesystem::temp_directory_path() / "bench-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::system_error(errno, std::system_category(), name);
    folder = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

} // namespace quorva::bench
