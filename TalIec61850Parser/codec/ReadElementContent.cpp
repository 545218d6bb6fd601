#include <TalIec61850Parser/codec/ReadElementContent.hpp>
#include <TalIec61850Parser/wire/OpenMode.hpp>
#include <TalIec61850Parser/wire/ShortLength.hpp>
#include <array>
#include <cstddef>
#include <fstream>

namespace TalIec61850Parser::detail {

namespace {

using Content = std::optional<std::vector<std::uint8_t>>;

bool readOctets(std::streambuf& file, std::uint8_t* octets, std::size_t count) {
    auto const wanted = static_cast<std::streamsize>(count);
    return file.sgetn(reinterpret_cast<char*>(octets), wanted) == wanted;
}

Content readContent(std::streambuf& file, std::uint64_t fileOffset, std::uint8_t tag) {
    auto const offset = static_cast<std::streamoff>(fileOffset);
    std::array<std::uint8_t, 4> header{};
    if (file.pubseekoff(offset, std::ios_base::beg, std::ios_base::in) == std::streamoff(-1) ||
        !readOctets(file, header.data(), 2) || header[0] != tag) {
        return std::nullopt;
    }
    auto const further = wire::furtherLengthOctets(header[1]);
    if (!further || !readOctets(file, &header[2], *further)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> content(wire::readShortLength(header, 1)->length);
    if (!readOctets(file, content.data(), content.size())) {
        return std::nullopt;
    }
    return content;
}

}  // namespace

Content readElementContent(std::string const& fileName, std::uint64_t fileOffset,
                           std::uint8_t tag) {
    // Most packets fit in: one read brings in header and content, and no buffer is allocated.
    std::array<char, 1024> buffer;  // NOLINT(*-member-init): filled before it is read
    std::filebuf file;
    file.pubsetbuf(buffer.data(), buffer.size());
    if (file.open(fileName, wire::openMode(fileName)) == nullptr) {
        return std::nullopt;
    }
    try {
        return readContent(file, fileOffset, tag);
    } catch (std::ios_base::failure const&) {
        return std::nullopt;  // what a stream would have turned into its bad state
    }
}

}  // namespace TalIec61850Parser::detail
