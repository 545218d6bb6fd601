#pragma once

// Internal: the ASDUs of an SV stream, compared with the data set and with SmvOpts.

#include <TalIec61850Analysis/packet/AsduView.hpp>
#include <TalIec61850Analysis/traffic/TrafficStream.hpp>
#include <TalIec61850Scl/match/DifferenceSet.hpp>
#include <TalIec61850Scl/model/ControlBlock.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <cstddef>
#include <optional>

namespace TalIec61850Scl::detail {

/// Looks at ASDUs, each by itself.
///
/// Of the optional fields, refrTm, smpRate, datSet and gmIdentity are to be there where SmvOpts
/// says so, and nowhere else. smpSynch is asked for where SmvOpts does; edition 2 always has it.
/// What the ASDU does not show, security and timestamp, is taken as described.
class AsduWatch {
public:
    /// @param options  as described; not set where the description has none
    /// @param dataSet  as described; null where the description has none
    AsduWatch(std::optional<SmvOptions> const& options, DataSet const* dataSet);

    /// Whether seqData is compared.
    [[nodiscard]] bool comparesSize() const { return size_ || least_ > 0; }

    /// @param isCut  whether a snap length cut the frame: what is not there is not missed
    void look(TalIec61850Analysis::AsduView const& asdu, bool isCut,
              TalIec61850Analysis::PacketRef packet, DifferenceSet& differences) const;

private:
    void compareOptions(TalIec61850Analysis::AsduView const& asdu, bool isCut,
                        TalIec61850Analysis::PacketRef packet, DifferenceSet& differences) const;

    [[nodiscard]] bool isRightSize(std::size_t size) const {
        return size_ ? size == *size_ : size >= least_;
    }

    std::optional<SmvOptions> options_;
    /// Of seqData, in octets; not set where it is not known.
    std::optional<std::size_t> size_;
    /// What is known of it.
    std::size_t least_ = 0;
};

}  // namespace TalIec61850Scl::detail
