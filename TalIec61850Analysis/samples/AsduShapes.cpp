#include <TalIec61850Analysis/packet/Elements.hpp>
#include <TalIec61850Analysis/packet/FieldFilter.hpp>
#include <TalIec61850Analysis/packet/PduFields.hpp>
#include <TalIec61850Analysis/samples/AsduShapes.hpp>
#include <TalIec61850Analysis/time/UtcTime.hpp>
#include <TalIec61850Parser/wire/SvTags.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace wire = TalIec61850Parser::wire;
using wire::ber::primitive;

namespace {

/// Notes which octets are read.
class MaskNotes {
public:
    MaskNotes(std::vector<std::uint8_t>* mask, std::size_t size) : mask_(mask) {
        if (mask_ != nullptr) {
            mask_->assign(size, 0);
        }
    }

    /// Identifier and length of an element.
    void addHead(ElementView const& element) {
        if (mask_ != nullptr) {
            auto const at = [&](std::size_t index) {
                return mask_->begin() + static_cast<std::ptrdiff_t>(std::min(index, mask_->size()));
            };
            std::fill(at(element.offset), at(element.valueOffset), std::uint8_t{0xFF});
        }
    }

private:
    std::vector<std::uint8_t>* mask_;
};

AsduPlaces placesIn(ElementView const& asdu, MaskNotes& notes) {
    AsduPlaces places{.asdu = static_cast<std::uint32_t>(asdu.offset)};
    FieldFilter filter(kAsduFields);
    std::size_t end = asdu.valueOffset;
    for (ElementView const& field : asdu.members()) {
        notes.addHead(field);
        if (!field.tag || field.fault) {
            break;
        }
        bool const isField = filter.takes(field);
        if (isField && *field.tag == primitive(wire::kSeqData)) {
            places.data = static_cast<std::uint32_t>(field.valueOffset);
            places.dataSize = static_cast<std::uint32_t>(field.octets.size());
        } else if (isField && *field.tag == primitive(wire::kRefrTm) &&
                   field.octets.size() == kUtcTimeSize) {
            places.refrTm = static_cast<std::uint32_t>(field.valueOffset);
        } else if (isField && *field.tag == primitive(wire::kGmIdentity) &&
                   field.octets.size() == kGmIdentitySize) {
            places.gmIdentity = static_cast<std::uint32_t>(field.valueOffset);
        }
        end = field.end();
    }
    places.end = static_cast<std::uint32_t>(end);
    return places;
}

}  // namespace

std::optional<AsduPlaces> findAsdu(Octets sequence, std::size_t number,
                                   std::vector<std::uint8_t>* mask) {
    MaskNotes notes(mask, sequence.size());
    Elements const outer(sequence);
    if (outer.empty()) {
        return std::nullopt;
    }
    ElementView const list = *outer.begin();
    notes.addHead(list);
    if (list.tag != wire::kSequenceOfAsdu) {
        return std::nullopt;
    }
    std::size_t count = 0;
    for (ElementView const& element : list.members()) {
        notes.addHead(element);
        if (!element.tag) {
            break;
        }
        if (*element.tag == wire::kAsdu && count++ == number) {
            return placesIn(element, notes);
        }
    }
    return std::nullopt;
}

std::size_t AsduShapes::countLast(std::span<std::uint8_t const* const> sequences) const {
    Shape const& shape = shapes_[last_];
    if (blocks_.matchAll(sequences, shape.mask, shape.firstHeld)) [[likely]] {
        return sequences.size();
    }
    auto const other =
        std::find_if_not(sequences.begin(), sequences.end(), [&](std::uint8_t const* sequence) {
            return blocks_.matches(sequence, shape.mask, shape.firstHeld);
        });
    return static_cast<std::size_t>(other - sequences.begin());
}

AsduPlaces const* AsduShapes::findElsewhere(Octets sequence, std::size_t number) {
    for (std::size_t i = 0; i < shapes_.size(); ++i) {
        // Of frames with several ASDUs, the next one is mostly that of the next shape.
        std::size_t const shape = (last_ + 1 + i) % shapes_.size();
        if (fits(shapes_[shape], sequence, number)) {
            last_ = shape;
            return &shapes_[shape].places;
        }
    }
    return nullptr;
}

void AsduShapes::learn(Octets sequence, std::size_t number, AsduPlaces const& places,
                       std::vector<std::uint8_t> const& mask) {
    constexpr std::size_t kMostBlocks = 0xFFFF;
    std::size_t const blocks = places.end / wire::MaskedBlocks::kBlockSize + 1;
    if (shapes_.size() == kMostShapes || places.end < wire::MaskedBlocks::kBlockSize ||
        places.end > sequence.size() || blocks_.maskBlockCount() + blocks > kMostBlocks) {
        return;
    }
    Octets const taken = sequence.first(places.end);
    Mask const kept = blocks_.addMask(Octets(mask).first(places.end));
    shapes_.push_back(
        {.number = number, .places = places, .mask = kept, .firstHeld = blocks_.hold(taken, kept)});
    last_ = shapes_.size() - 1;
    reach_ = std::max<std::size_t>(reach_, places.end);
}

}  // namespace TalIec61850Analysis::detail
