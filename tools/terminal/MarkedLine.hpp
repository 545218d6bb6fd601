#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/output/Style.hpp"
#include "tools/terminal/TextForm.hpp"
#include "tools/terminal/TimeScale.hpp"

namespace TalIec61850Tools {

/// Columns of a picture in which there is something to be marked.
class MarkedColumns {
public:
    /// @param scale  must outlive this
    explicit MarkedColumns(TimeScale const& scale) : scale_(scale), marks_(scale.columns()) {}

    /// Marks the columns that some time is in.
    void mark(std::int64_t from, std::int64_t to) {
        auto const span = scale_.spanOf(from, to);
        for (std::size_t column = span.first; column < span.end; ++column) {
            marks_[column] = true;
            areAny_ = true;
        }
    }

    [[nodiscard]] bool areAny() const { return areAny_; }
    [[nodiscard]] bool operator[](std::size_t column) const { return marks_[column]; }
    [[nodiscard]] std::size_t size() const { return marks_.size(); }

private:
    TimeScale const& scale_;
    std::vector<bool> marks_;
    bool areAny_ = false;
};

/// What columns are marked with.
enum class Mark {
    missing,     ///< light shade, or x
    badQuality,  ///< the upper half of the column, or !; in the colour of warnings
};

[[nodiscard]] std::string_view glyphOf(Mark mark, bool isUtf8);

/// A line of marks below a picture, with what they are in front.
/// @param labelColumns  what the labels of the picture take; at least 1
[[nodiscard]] std::string markedLine(Mark mark, MarkedColumns const& columns,
                                     std::size_t labelColumns, TextForm const& form);

}  // namespace TalIec61850Tools
