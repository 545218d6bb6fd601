#include "support/Apdu.hpp"

#include <limits>
#include <stdexcept>

namespace TalTest {

Bytes apdu(ApduHeader const& header, Bytes const& pdu, Bytes const& trailing) {
    constexpr std::size_t headerSize = 8;
    std::size_t const size = headerSize + pdu.size() + trailing.size();
    if (!header.length && size > std::numeric_limits<std::uint16_t>::max()) {
        throw std::length_error("PDU too long for the Length field");
    }
    return concat({bigEndian(header.appId, 2), bigEndian(header.length ? *header.length : size, 2),
                   bigEndian(header.reserved1, 2), bigEndian(header.reserved2, 2), pdu, trailing});
}

}  // namespace TalTest
