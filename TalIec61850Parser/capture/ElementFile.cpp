#include <TalIec61850Parser/capture/ElementFile.hpp>
#include <TalIec61850Parser/capture/PcapFile.hpp>
#include <array>

namespace TalIec61850Parser::detail {

namespace {

constexpr std::uint8_t kOneLengthOctet = 0x81;
constexpr std::uint8_t kTwoLengthOctets = 0x82;

/// Length octets behind a first one; nullopt for the forms that are not read.
std::optional<std::size_t> furtherLengthOctets(std::uint8_t first) {
    if (first < ber::kLongForm) {
        return 0;
    }
    return first == kOneLengthOctet || first == kTwoLengthOctets
               ? std::optional<std::size_t>(first & ~unsigned{ber::kLongForm})
               : std::nullopt;
}

bool readOctets(std::istream& file, std::uint8_t* octets, std::size_t count) {
    file.read(reinterpret_cast<char*>(octets), static_cast<std::streamsize>(count));
    return file.good();
}

}  // namespace

std::optional<ShortLength> readShortLength(Octets data, std::size_t position) {
    if (position >= data.size()) {
        return std::nullopt;
    }
    std::uint8_t const first = data[position];
    auto const further = furtherLengthOctets(first);
    if (!further || data.size() - position - 1 < *further) {
        return std::nullopt;
    }
    std::size_t length = *further == 0 ? first : 0;
    for (std::uint8_t const octet : data.subspan(position + 1, *further)) {
        length = length << 8U | octet;
    }
    return ShortLength{.length = length, .size = 1 + *further};
}

std::optional<std::vector<std::uint8_t>> readElementContent(std::string const& fileName,
                                                            std::uint64_t position,
                                                            std::uint8_t tag) {
    PcapFile file(fileName);
    file.seekg(static_cast<std::streamoff>(position));
    std::array<std::uint8_t, 4> header{};
    if (!readOctets(file, header.data(), 2) || header[0] != tag) {
        return std::nullopt;
    }
    auto const further = furtherLengthOctets(header[1]);
    if (!further || !readOctets(file, &header[2], *further)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> content(readShortLength(header, 1)->length);
    if (!readOctets(file, content.data(), content.size())) {
        return std::nullopt;
    }
    return content;
}

}  // namespace TalIec61850Parser::detail
