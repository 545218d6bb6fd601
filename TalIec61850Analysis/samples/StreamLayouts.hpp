#pragma once

// Internal: what the samples of a stream are made of.

#include <TalIec61850Analysis/samples/AsduReader.hpp>
#include <TalIec61850Analysis/samples/FindLayouts.hpp>
#include <TalIec61850Analysis/samples/LayoutInference.hpp>
#include <TalIec61850Analysis/samples/SampleLayout.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Tells layouts apart that may differ: seqData of another size, of another data set, or of another
/// revision of it.
struct LayoutKey {
    std::size_t size = 0;
    /// Only datSet and confRev of them count; null for none.
    StreamAttributes const* attributes = nullptr;

    friend bool operator==(LayoutKey const& a, LayoutKey const& b) {
        return a.size == b.size && (a.attributes == b.attributes ||
                                    (a.attributes != nullptr && b.attributes != nullptr &&
                                     a.attributes->datSet == b.attributes->datSet &&
                                     a.attributes->confRev == b.attributes->confRev));
    }
};

/// Infers the layouts of a stream, each once, from ASDUs all over it.
class StreamLayouts {
public:
    /// @param given  the layout of samples of its size, whatever they look like
    StreamLayouts(TrafficIndex const& index, TrafficStream const& stream,
                  std::optional<SampleLayout> given);
    /// @param window  of the captures of the index, which others use too: what they read last of it
    ///                is gone after each call
    StreamLayouts(TrafficIndex const& index, TrafficStream const& stream,
                  std::optional<SampleLayout> given, std::shared_ptr<CaptureWindow> window);

    /// @param first  a packet of that make: where few of it are met all over the stream, those
    ///               from this one on are looked at, too
    /// @return valid until the next call
    /// @throws std::system_error  a capture cannot be read
    [[nodiscard]] FoundLayout const& of(LayoutKey const& key, PacketRef first);

    /// Those of the ASDUs that are looked at, in their order, then those of other data sets and
    /// revisions.
    /// @throws std::system_error  a capture cannot be read
    [[nodiscard]] std::vector<StreamLayout> all();

    /// Whether any of the ASDUs that are looked at has a refrTm.
    /// @throws std::system_error  a capture cannot be read
    [[nodiscard]] bool haveTimes();

private:
    struct Known {
        LayoutKey key;
        FoundLayout layout;
    };

    /// Reads some ASDUs, all over the stream.
    template <typename Visit>
    void visitSome(Visit const& visit);
    template <typename Visit>
    void visitFrom(PacketRef first, Visit const& visit);
    template <typename IsWanted, typename Visit>
    void visitChanges(IsWanted const& isWanted, Visit const& visit);
    [[nodiscard]] FoundLayout infer(LayoutKey const& key, PacketRef first);

    TrafficIndex const& index_;
    TrafficStream const& stream_;
    std::optional<SampleLayout> given_;
    AsduReader asdus_;
    std::vector<Known> known_;
    std::optional<bool> haveTimes_;
    FoundLayout unknown_;
};

}  // namespace TalIec61850Analysis::detail
