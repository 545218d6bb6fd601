#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace TalIec61850Tools {

/// An open file of the operating system, closed at the end; or none.
class Descriptor {
public:
    Descriptor() = default;
    /// Takes over what `open` and its like return; below zero for none.
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    [[nodiscard]] explicit operator bool() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }

private:
    int number_ = -1;
};

/// Opens a file for reading, without waiting for anybody should it be a pipe.
/// @return none when that fails; errno says why
[[nodiscard]] Descriptor openToRead(std::string const& path);

/// Reads what the file holds at a position, up to the end of the file.
/// @return how many of the octets were read; fewer than there are only at the end of the file
/// @throws std::system_error  the file cannot be read
[[nodiscard]] std::size_t readAt(Descriptor const& file, std::uint64_t position,
                                 std::span<std::uint8_t> octets);

}  // namespace TalIec61850Tools
