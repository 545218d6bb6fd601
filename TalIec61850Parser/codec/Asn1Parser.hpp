#pragma once

#include <TalIec61850Parser/Export.hpp>
#include <TalIec61850Parser/codec/Asn1Tag.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TalIec61850Parser {

/// Reads BER elements (ITU-T X.690) and renders their values as text.
///
/// Understands what GOOSE and SV frames use: identifiers of one octet, definite lengths of at
/// most four length octets. Nothing here throws on bad input, keeps state, or depends on the locale
/// or, save for the zones that count leap seconds, on the time zone; every operation may run on
/// several threads at once.
class TALIEC61850PARSER_EXPORT Asn1Parser {
public:
    /// Reads the element at `position` and steps past it, value included.
    ///
    /// The length octet 0x80 (indefinite form) reads as an empty element. On failure `position`
    /// is where reading stopped, `tag.tag` holds the identifier if there was one, and the
    /// other members keep what they held.
    /// @param data      the octets to read from; not those of `tag.value`
    /// @param position  index into `data`, moved
    /// @param tag       written
    /// @return false when no whole element is at `position`, or its length takes more than
    ///         four octets
    [[nodiscard]] static bool parseTag(std::vector<std::uint8_t> const& data, std::size_t& position,
                                       Asn1Tag& tag);

    /// The first four octets, or as many as there are, most significant first.
    [[nodiscard]] static std::uint32_t bytesToUint32(std::vector<std::uint8_t> const& bytes);

    /// The first two octets, most significant first. Deliberate: 0 when there are fewer.
    [[nodiscard]] static std::uint16_t bytesToUint16(std::vector<std::uint8_t> const& bytes);

    /// The first octet; 0 when there is none.
    [[nodiscard]] static std::uint8_t bytesToUint8(std::vector<std::uint8_t> const& bytes);

    /// Upper-case hexadecimal octets in brackets, such as [41 0A FF]; empty for no octets.
    [[nodiscard]] static std::string formatBytes(std::vector<std::uint8_t> const& bytes);

    /// The octets as text when all of them are printable ASCII, otherwise as `formatBytes`.
    [[nodiscard]] static std::string bytesToString(std::vector<std::uint8_t> const& bytes);

    /// A GOOSE event time as a calendar text in UTC, by the number of octets:
    ///
    /// - 8: an IEEE 754 double of seconds since 1970, cut to whole seconds. Deliberate: not the
    ///   UtcTime layout of IEC 61850-8-1, whose values come out as the fallback below.
    /// - 6: milliseconds (two octets), second, minute, hour and day, in January 1984.
    /// - 4: seconds since 1970.
    /// - 0: "Empty timestamp".
    ///
    /// Any other number of octets, and a time without a calendar date, give "0x" and the octets
    /// in hexadecimal.
    [[nodiscard]] static std::string convertGooseTimestampToDateTime(
        std::vector<std::uint8_t> const& bytes);

    /// A time value of 4 or 8 octets as one decimal number, "0" for no octets, and any other
    /// number of octets as the decimal numbers of the octets, run together.
    [[nodiscard]] static std::string convertBytesToTimestamp(
        std::vector<std::uint8_t> const& bytes);

    /// A count of nanoseconds since 1970, in the first eight octets, as a calendar text in UTC
    /// with milliseconds. "Invalid refrTm data" for fewer octets, "Invalid time" for a time
    /// without a calendar date.
    [[nodiscard]] static std::string convertRefrTmToDateTime(
        std::vector<std::uint8_t> const& bytes);
};

}  // namespace TalIec61850Parser
