#include "support/TempFile.hpp"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace TalTest {
namespace {

void removeQuietly(std::string const& path) noexcept {
    std::error_code ignored;
    if (!path.empty()) {
        std::filesystem::remove_all(path, ignored);
    }
}

}  // namespace

TempDir::TempDir() : path_((std::filesystem::temp_directory_path() / "tal-XXXXXX").string()) {
    if (::mkdtemp(path_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
}

TempDir::TempDir(TempDir&& other) noexcept : path_(std::exchange(other.path_, {})) {}

TempDir& TempDir::operator=(TempDir&& other) noexcept {
    std::swap(path_, other.path_);
    return *this;
}

TempDir::~TempDir() { removeQuietly(path_); }

std::string TempDir::file(std::string_view name) const {
    return (std::filesystem::path(path_) / name).string();
}

std::string TempDir::write(std::string_view name, Bytes const& content) const {
    std::string path = file(name);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<char const*>(content.data()),
              static_cast<std::streamsize>(content.size()));
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + path);
    }
    return path;
}

TempFile::TempFile(Bytes const& content, std::string_view name)
    : path_(directory_.write(name, content)) {}

}  // namespace TalTest
