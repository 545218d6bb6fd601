#include "support/Captures.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace TalTest {

namespace {

/// Adds the command line of this process to the file that TAL_CAPTURES_ASKED names, if it does.
void noteThatCapturesAreAskedFor() {
    char const* const notes = std::getenv("TAL_CAPTURES_ASKED");
    if (notes == nullptr) return;
    std::ifstream own("/proc/self/cmdline");
    std::string line{std::istreambuf_iterator<char>(own), {}};
    std::replace(line.begin(), line.end(), '\0', ' ');
    // At once, as a line: other tests may be running.
    std::ofstream(notes, std::ios::app) << line + '\n';
}

}  // namespace

std::optional<std::filesystem::path> capturesFolder() {
    noteThatCapturesAreAskedFor();
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

bool requireCaptures() {
    char const* const required = std::getenv("TAL_REQUIRE_CAPTURES");
    return required != nullptr && std::string_view(required) == "1";
}

std::optional<std::string> capture(std::string_view name) {
    auto const folder = capturesFolder();
    std::error_code error;
    if (!folder || !std::filesystem::is_regular_file(*folder / name, error)) {
        return std::nullopt;
    }
    return (*folder / name).string();
}

std::vector<std::string> recorded(std::vector<std::string> const& names) {
    std::vector<std::string> paths;
    for (std::string const& name : names) {
        if (auto const path = capture(name)) {
            paths.push_back(*path);
        } else if (requireCaptures()) {
            throw std::runtime_error("no recorded capture " + name);
        }
    }
    return paths;
}

std::vector<std::string> recordedCapturePaths() {
    std::vector<std::string> paths;
    if (auto const folder = capturesFolder()) {
        for (auto const& entry : std::filesystem::directory_iterator(*folder)) {
            if (entry.path().extension() == ".pcap") paths.push_back(entry.path().string());
        }
    }
    if (paths.empty() && requireCaptures()) {
        throw std::runtime_error("no recorded captures, see TAL_CAPTURES");
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string captureTestName(std::string_view capture) {
    std::string name(capture.substr(0, capture.rfind('.')));
    for (char& character : name) {
        if (std::isalnum(static_cast<unsigned char>(character)) == 0) character = '_';
    }
    return name;
}

}  // namespace TalTest
