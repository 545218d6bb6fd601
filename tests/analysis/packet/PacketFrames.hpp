#pragma once

// Frames built for tests, and what is read of them.

#include <TalIec61850Analysis/packet/DataValue.hpp>
#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

/// A frame, and where in it the element begins that the index of a capture points to.
struct PlacedFrame {
    Bytes frame;
    std::size_t offset = 0;
};

[[nodiscard]] PlacedFrame placed(GooseMessage const& message, Ethernet const& ethernet = {});
[[nodiscard]] PlacedFrame placed(SvMessage const& message, Ethernet const& ethernet = svEthernet());

[[nodiscard]] TalIec61850Analysis::GoosePacket inspected(GooseMessage const& message,
                                                         Ethernet const& ethernet = {});
[[nodiscard]] TalIec61850Analysis::SvPacket inspected(SvMessage const& message,
                                                      Ethernet const& ethernet = svEthernet());

/// What is read of a message with this content of allData.
[[nodiscard]] TalIec61850Analysis::GoosePacket inspectedData(Bytes const& allData);

/// The only value of such a message.
/// @throws std::runtime_error when there are none or several
[[nodiscard]] TalIec61850Analysis::DataValue onlyValue(Bytes const& element);

/// One value of every kind, some with all there is to them.
[[nodiscard]] std::vector<Bytes> everyKind();

/// A message of every kind of value, after all tags, with something unknown and something after it.
[[nodiscard]] PlacedFrame richGoose();
/// Two ASDUs with every field.
[[nodiscard]] PlacedFrame richSv();

/// The faults without where they are.
[[nodiscard]] std::vector<TalIec61850Analysis::FaultKind> kinds(
    TalIec61850Analysis::Faults const& faults);

}  // namespace TalTest
