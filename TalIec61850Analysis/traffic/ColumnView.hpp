#pragma once

#include <cstddef>
#include <iterator>

namespace TalIec61850Analysis {

/// A column of PacketColumns: a value for each packet. What all packets have in common is held
/// once, and takes no memory for each of them. Holds as long as the columns.
template <typename Value>
class ColumnView {
public:
    /// Goes over the values in their order.
    class Iterator {
    public:
        /// @cond
        using iterator_category = std::input_iterator_tag;
        using value_type = Value;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = Value;
        /// @endcond

        /// Equal to others alone that were made so.
        constexpr Iterator() = default;
        /// @param column  must hold as long
        /// @param packet  its place; the size of the column for the end
        constexpr Iterator(ColumnView const& column, std::size_t packet)
            : values_(column.values_), common_(column.common_), packet_(packet) {}

        /// The value of the packet.
        [[nodiscard]] constexpr Value operator*() const noexcept {
            return values_ != nullptr ? values_[packet_] : common_;
        }
        /// The next packet.
        constexpr Iterator& operator++() noexcept {
            ++packet_;
            return *this;
        }
        /// The next packet, as it was before.
        constexpr Iterator operator++(int) noexcept {
            Iterator const before = *this;
            ++packet_;
            return before;
        }
        /// Of iterators of one column.
        friend constexpr bool operator==(Iterator const& a, Iterator const& b) noexcept {
            return a.packet_ == b.packet_;
        }

    private:
        Value const* values_ = nullptr;
        Value common_{};
        std::size_t packet_ = 0;
    };

    /// An empty column.
    constexpr ColumnView() = default;
    /// Different values.
    /// @param values  not null; must hold as long as the column
    /// @param size    how many there are
    constexpr ColumnView(Value const* values, std::size_t size) noexcept
        : values_(values), size_(size) {}
    /// One value for all packets.
    /// @param common  the value
    /// @param size    how many packets there are
    constexpr ColumnView(Value common, std::size_t size) noexcept : common_(common), size_(size) {}

    /// How many packets there are.
    [[nodiscard]] constexpr std::size_t size() const noexcept { return size_; }
    /// Whether there are none.
    [[nodiscard]] constexpr bool empty() const noexcept { return size_ == 0; }
    /// The value of a packet.
    /// @param packet  below `size`
    [[nodiscard]] constexpr Value operator[](std::size_t packet) const noexcept {
        return values_ != nullptr ? values_[packet] : common_;
    }
    /// The first packet.
    [[nodiscard]] constexpr Iterator begin() const noexcept { return {*this, 0}; }
    /// After the last packet.
    [[nodiscard]] constexpr Iterator end() const noexcept { return {*this, size_}; }

    /// The values one after the other; null where all packets have the value of the first.
    [[nodiscard]] constexpr Value const* values() const noexcept { return values_; }

private:
    Value const* values_ = nullptr;
    Value common_{};
    std::size_t size_ = 0;
};

}  // namespace TalIec61850Analysis
