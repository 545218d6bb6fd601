#pragma once

// Internal: where the sample is in an ASDU, and the shapes that ASDUs were found to have.

#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Parser/wire/pattern/MaskedBlocks.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Where an ASDU and its parts are, seen from the sequence of ASDU (A2).
struct AsduPlaces {
    /// Of the octet 30.
    std::uint32_t asdu = 0;
    /// Of the octets of seqData; as many as there are.
    std::uint32_t data = 0;
    std::uint32_t dataSize = 0;
    /// Of the eight octets of refrTm; 0 where there is none.
    std::uint32_t refrTm = 0;
    /// Of the octets of gmIdentity; 0 where there is none, or none of eight octets.
    std::uint32_t gmIdentity = 0;
    /// Of what follows all of these.
    std::uint32_t end = 0;
};

/// Octets of gmIdentity.
inline constexpr std::size_t kGmIdentitySize = 8;

/// The most octets that a sequence of ASDU is read up to.
inline constexpr std::size_t kLongestSequence = std::size_t{64} << 10U;

/// Finds an ASDU by reading all elements up to it.
/// @param sequence  from A2 on, as much as was captured
/// @param number    of the ASDU, from 0
/// @param mask      if not null, it is set to 0xFF for each octet that the result depends on, and 0
///                  for others
/// @return not set where there is no such ASDU
[[nodiscard]] std::optional<AsduPlaces> findAsdu(Octets sequence, std::size_t number,
                                                 std::vector<std::uint8_t>* mask = nullptr);

/// Remembers where parts were in ASDUs of the same identifiers and lengths.
class AsduShapes {
public:
    /// @param sequence  from A2 on; at least `reach()` octets, unless there are no more
    /// @return null where no shape fits; valid until `learn` is called
    [[nodiscard]] AsduPlaces const* find(Octets sequence, std::size_t number) {
        if (last_ < shapes_.size() && fits(shapes_[last_], sequence, number)) [[likely]] {
            return last();
        }
        return findElsewhere(sequence, number);
    }

    /// The places in the shape that was found last; null where there is none.
    [[nodiscard]] AsduPlaces const* last() const {
        return last_ < shapes_.size() ? &shapes_[last_].places : nullptr;
    }

    /// The number of the ASDUs of that shape, of which there must be one.
    [[nodiscard]] std::size_t lastNumber() const { return shapes_[last_].number; }

    /// How many ASDUs of that number are of the shape that was found last, up to one that is not.
    /// @param sequences  of each at least `reach()` octets
    [[nodiscard]] std::size_t countLast(std::span<std::uint8_t const* const> sequences) const;

    /// Remembers a shape, if there is room for it.
    void learn(Octets sequence, std::size_t number, AsduPlaces const& places,
               std::vector<std::uint8_t> const& mask);

    /// How many octets a shape takes at most.
    [[nodiscard]] std::size_t reach() const { return reach_; }

private:
    using Mask = TalIec61850Parser::wire::MaskedBlocks::Mask;

    static constexpr std::size_t kMostShapes = 64;

    struct Shape {
        std::size_t number = 0;
        AsduPlaces places;
        Mask mask;
        std::uint32_t firstHeld = 0;
    };

    [[nodiscard]] bool fits(Shape const& shape, Octets sequence, std::size_t number) const {
        return shape.number == number && sequence.size() >= shape.places.end &&
               blocks_.matches(sequence.data(), shape.mask, shape.firstHeld);
    }
    [[nodiscard]] AsduPlaces const* findElsewhere(Octets sequence, std::size_t number);

    TalIec61850Parser::wire::MaskedBlocks blocks_;
    std::vector<Shape> shapes_;
    /// The one that is asked for first.
    std::size_t last_ = 0;
    std::size_t reach_ = 0;
};

}  // namespace TalIec61850Analysis::detail
