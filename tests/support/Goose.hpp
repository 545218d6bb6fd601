#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/Apdu.hpp"
#include "support/Ber.hpp"
#include "support/Bytes.hpp"
#include "support/Data.hpp"
#include "support/Ethernet.hpp"

namespace TalTest {

/// One GOOSE message (IEC 61850-8-1). Fields that are unset are left out of the PDU; every one is
/// set by default, to a message with a single boolean in its data set.
///
///     GooseMessage message;
///     message.goID.reset();
///     message.stNum = {7, 4};  // in four octets
///     message.setData({dataBoolean(true), dataBitString({0x00, 0x00}, 3)});
struct GooseMessage {
    std::uint16_t appId = 0x0001;
    std::uint16_t reserved1 = 0;
    std::uint16_t reserved2 = 0;
    /// The Length field of the header, where it is to be wrong.
    std::optional<std::uint16_t> length = {};

    std::optional<std::string> gocbRef = "RELAY1LD0/LLN0$GO$gcb1";
    std::optional<MinimalUnsigned> timeAllowedtoLive = MinimalUnsigned(2000);
    std::optional<std::string> datSet = "RELAY1LD0/LLN0$dataSet1";
    std::optional<std::string> goID = "RELAY1_gcb1";
    /// The octets of t, utcTime() makes them.
    std::optional<Bytes> t = Bytes{0x65, 0xFA, 0xB2, 0x40, 0x00, 0x00, 0x00, 0x0A};
    std::optional<MinimalUnsigned> stNum = MinimalUnsigned(1);
    std::optional<MinimalUnsigned> sqNum = MinimalUnsigned(0);
    std::optional<bool> simulation = false;
    std::optional<MinimalUnsigned> confRev = MinimalUnsigned(1);
    std::optional<bool> ndsCom = false;
    std::optional<MinimalUnsigned> numDatSetEntries = MinimalUnsigned(1);
    /// The content of allData: the entries of the data set, one after the other.
    std::optional<Bytes> allData = Bytes{0x83, 0x01, 0x00};

    /// AB, or 8B to write allData as if it were primitive.
    std::uint8_t allDataTag = 0xAB;
    LengthForm allDataLengthForm = LengthForm::shortest;
    LengthForm pduLengthForm = LengthForm::shortest;
    /// Elements, or anything else, before gocbRef, before allData and after it.
    Bytes extraFirst = {};
    Bytes extraBeforeData = {};
    Bytes extraLast = {};
    /// What is after the PDU, such as a signature.
    Bytes trailing = {};

    /// Sets allData to these entries, and numDatSetEntries to their count.
    GooseMessage& setData(std::vector<Bytes> const& entries);
};

/// The goosePdu alone, from 61 on.
[[nodiscard]] Bytes goosePdu(GooseMessage const& message);

/// The header from the APPID on, the goosePdu, and what trails it.
[[nodiscard]] Bytes gooseApdu(GooseMessage const& message);

/// The whole frame.
[[nodiscard]] Bytes gooseFrame(Ethernet const& ethernet, GooseMessage const& message);

}  // namespace TalTest
