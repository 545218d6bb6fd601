#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/Apdu.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"

namespace TalTest {

/// One channel of a sample: its value and its quality word.
using Sample = std::pair<std::int32_t, std::uint32_t>;

/// The content of seqData: eight octets for each channel.
[[nodiscard]] Bytes samples(std::vector<Sample> const& channels);

/// One ASDU (IEC 61850-9-2). Fields that are unset are left out.
///
///     Asdu asdu;
///     asdu.smpCnt = 3999;     // in two octets, as it should be
///     asdu.smpCnt = {7, 1};   // in one
struct Asdu {
    std::optional<std::string> svID = "MU01";
    std::optional<std::string> datSet = {};
    std::optional<Unsigned<2>> smpCnt = Unsigned<2>(0);
    std::optional<Unsigned<4>> confRev = Unsigned<4>(1);
    /// The octets of refrTm, utcTime() of Data.hpp makes them.
    std::optional<Bytes> refrTm = {};
    std::optional<Unsigned<1>> smpSynch = Unsigned<1>(2);
    std::optional<Unsigned<2>> smpRate = {};
    /// The content of seqData; the 64 octets of eight channels at zero.
    std::optional<Bytes> seqData = Bytes(64);
    std::optional<Unsigned<2>> smpMod = {};

    LengthForm lengthForm = LengthForm::shortest;
    /// Elements, or anything else, before svID and after the last field.
    Bytes extraFirst = {};
    Bytes extraLast = {};
};

/// One SV message (IEC 61850-9-2), with one ASDU by default.
struct SvMessage {
    std::uint16_t appId = 0x4000;
    std::uint16_t reserved1 = 0;
    std::uint16_t reserved2 = 0;
    /// The Length field of the header, where it is to be wrong.
    std::optional<std::uint16_t> length = {};

    /// The noASDU element; unset, it counts `asdus`.
    std::optional<MinimalUnsigned> noASDU = {};
    bool omitNoASDU = false;
    std::optional<Bytes> security = {};
    std::vector<Asdu> asdus = {Asdu{}};

    LengthForm pduLengthForm = LengthForm::shortest;
    LengthForm sequenceLengthForm = LengthForm::shortest;
    /// What is before noASDU, before the sequence of ASDU, and in it before the first ASDU.
    Bytes extraFirst = {};
    Bytes extraBeforeSequence = {};
    Bytes extraInSequence = {};
    /// What is after the PDU, such as a signature.
    Bytes trailing = {};
};

/// One ASDU alone, from 30 on.
[[nodiscard]] Bytes asduElement(Asdu const& asdu);

/// The savPdu alone, from 60 on.
[[nodiscard]] Bytes savPdu(SvMessage const& message);

/// Where the sequence of ASDU (A2) begins in savPdu(message).
[[nodiscard]] std::size_t sequenceOffset(SvMessage const& message);

/// The header from the APPID on, the savPdu, and what trails it.
[[nodiscard]] Bytes svApdu(SvMessage const& message);

/// The whole frame.
[[nodiscard]] Bytes svFrame(Ethernet const& ethernet, SvMessage const& message);

/// An untagged SV multicast.
[[nodiscard]] Ethernet svEthernet();

/// A message as merging units of 9-2LE publish it: one ASDU of svID, smpCnt, confRev, smpSynch and
/// the four currents and four voltages, which are zero where `channels` holds fewer than eight.
[[nodiscard]] SvMessage message92le(std::string const& svID, std::uint16_t smpCnt,
                                    std::vector<Sample> channels = {});

}  // namespace TalTest
