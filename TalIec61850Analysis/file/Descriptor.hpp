#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <utility>

namespace TalIec61850Analysis {

/// An open file of the operating system, closed when this object is destroyed; or none.
class Descriptor {
public:
    /// None.
    Descriptor() = default;
    /// Takes over what `open` and its like return.
    /// @param number  below zero for none
    explicit Descriptor(int number) noexcept : number_(number) {}
    /// Leaves the other without a file.
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    /// Closes the file that was held, and leaves the other without one.
    TALIEC61850ANALYSIS_EXPORT Descriptor& operator=(Descriptor&& other) noexcept;
    TALIEC61850ANALYSIS_EXPORT ~Descriptor();

    /// Whether there is a file.
    [[nodiscard]] explicit operator bool() const noexcept { return number_ >= 0; }
    /// What the operating system knows the file by; below zero for none. It stays this object's.
    [[nodiscard]] int number() const noexcept { return number_; }

private:
    int number_ = -1;
};

}  // namespace TalIec61850Analysis
