#pragma once

// A file that is written piece by piece.

#include <cstddef>
#include <fstream>
#include <string>
#include <utility>

#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"
#include "support/TempFile.hpp"

namespace TalTest {

/// Has the first octets of a content; others are appended when they are asked for.
class GrowingFile {
public:
    GrowingFile(Bytes content, std::size_t size)
        : content_(std::move(content)), file_(prefix(content_, size)), size_(size) {}

    [[nodiscard]] std::string const& path() const { return file_.path(); }
    /// Octets that are still to come.
    [[nodiscard]] std::size_t left() const { return content_.size() - size_; }

    void grow(std::size_t octets) {
        std::ofstream out(path(), std::ios::binary | std::ios::app);
        out.write(reinterpret_cast<char const*>(content_.data() + size_),
                  static_cast<std::streamsize>(octets));
        size_ += octets;
    }

private:
    Bytes content_;
    TempFile file_;
    std::size_t size_;
};

}  // namespace TalTest
