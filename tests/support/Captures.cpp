#include "support/Captures.hpp"

#include <cstdlib>
#include <system_error>

namespace TalTest {

std::optional<std::filesystem::path> capturesFolder() {
    char const* const chosen = std::getenv("TAL_CAPTURES");
    std::filesystem::path const folder =
        chosen != nullptr ? std::filesystem::path(chosen)
                          : std::filesystem::path(TAL_SOURCE_DIR) / "../shared/captures";
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        return std::nullopt;
    }
    return folder.lexically_normal();
}

std::optional<std::string> capture(std::string_view name) {
    auto const folder = capturesFolder();
    std::error_code error;
    if (!folder || !std::filesystem::is_regular_file(*folder / name, error)) {
        return std::nullopt;
    }
    return (*folder / name).string();
}

}  // namespace TalTest
