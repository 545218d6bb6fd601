#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tools/commands/CommandRun.hpp"
#include "tools/commands/NamesOfRun.hpp"
#include "tools/options/PacketOptions.hpp"
#include "tools/render/PacketLayout.hpp"

namespace TalIec61850Tools {

/// The packets that PacketOptions select, for the commands that list and show them.
class WantedPackets {
public:
    /// What is counted and limited.
    enum class Unit {
        packets,
        frames,  ///< each once, whatever ASDUs of it are wanted
    };

    /// Indexes the captures of the run, and reports what is wrong with them.
    /// @param run, options, names  must outlive this
    WantedPackets(CommandRun& run, PacketOptions const& options, NamesOfRun& names, Unit unit);

    /// Gives packet after packet, in the order of PacketSelection, up to the limit. A capture that
    /// cannot be read again is reported once, and its packets are left out from there on.
    /// @param take  may throw std::system_error, which is of the capture then; and OutputError
    void visit(std::function<void(PacketRow const&)> const& take);

    /// To be called after `visit`: says what there is where there was no packet.
    void noteIfNone() const;

    /// The last line for people, after `visit`: how many packets, of how many streams.
    [[nodiscard]] std::string summary() const;

    /// That of the captures of the run.
    [[nodiscard]] TalIec61850Analysis::TrafficIndex const& index() const { return index_; }

    /// How many were given.
    [[nodiscard]] std::uint64_t count() const { return count_; }

private:
    [[nodiscard]] PacketWish wish() const;
    [[nodiscard]] TalIec61850Analysis::FrameHeader headerOf(std::uint32_t file,
                                                            std::uint64_t frameOffset);
    [[nodiscard]] std::optional<SelectedPacket> nextWanted();
    [[nodiscard]] std::uint64_t countAll();
    void lose(std::uint32_t file, std::error_code const& error, ProgressBar& bar);

    CommandRun& run_;
    PacketOptions const& options_;
    PacketCriteria criteria_;
    Unit unit_;
    TalIec61850Analysis::TrafficIndex index_;
    FrameReader frames_;
    /// Captures that cannot be read again.
    std::set<std::uint32_t> lost_;
    PacketSelection selection_;
    std::optional<std::pair<std::uint32_t, std::uint64_t>> lastFrame_;
    std::uint64_t count_ = 0;
    std::uint64_t beyondLimit_ = 0;
    /// By the number of a stream in the index: whether packets of it were given.
    std::vector<bool> isGiven_;
};

}  // namespace TalIec61850Tools
