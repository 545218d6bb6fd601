#include "support/CaptureFile.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <ostream>
#include <stdexcept>

namespace TalTest {
namespace {

constexpr std::uint32_t microsecondMagic = 0xA1B2C3D4;
constexpr std::uint32_t nanosecondMagic = 0xA1B23C4D;
constexpr std::uint32_t kSnapLength = 262144;
constexpr std::uint32_t nanosecondsPerMicrosecond = 1000;
constexpr std::size_t writerBufferSize = std::size_t{1} << 20;

void putNumber(std::uint8_t* out, std::uint32_t value, std::size_t octets, bool littleEndian) {
    for (std::size_t i = 0; i < octets; ++i) {
        std::size_t const place = littleEndian ? i : octets - 1 - i;
        out[place] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

std::uint32_t number(std::uint8_t const* octets, bool littleEndian) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = value << 8 | octets[littleEndian ? 3 - i : i];
    }
    return value;
}

std::uint32_t magic(CaptureVariant variant) {
    return isNanosecond(variant) ? nanosecondMagic : microsecondMagic;
}

std::optional<CaptureVariant> recognise(Bytes const& capture) {
    if (capture.size() < 4) {
        return std::nullopt;
    }
    for (CaptureVariant const variant : captureVariants) {
        if (number(capture.data(), isLittleEndian(variant)) == magic(variant)) {
            return variant;
        }
    }
    return std::nullopt;
}

CaptureRecord readHeader(Bytes const& capture, std::size_t position, CaptureVariant variant) {
    std::uint8_t const* const header = capture.data() + position;
    bool const little = isLittleEndian(variant);
    std::uint32_t const unit = isNanosecond(variant) ? 1 : nanosecondsPerMicrosecond;
    CaptureRecord record;
    record.position = position;
    record.seconds = number(header, little);
    record.nanoseconds = number(header + 4, little) * unit;
    record.inclLen = number(header + 8, little);
    record.origLen = number(header + 12, little);
    return record;
}

Bytes littleEndian(std::uint32_t value, std::size_t octets) {
    Bytes out(octets);
    putNumber(out.data(), value, octets, true);
    return out;
}

/// A block of a next-generation file: its type, its length before and after the content.
Bytes block(std::uint32_t type, Bytes const& content) {
    std::size_t const padding = (4 - content.size() % 4) % 4;
    constexpr std::size_t typeAndLengths = 12;
    auto const size = static_cast<std::uint32_t>(typeAndLengths + content.size() + padding);
    return concat({littleEndian(type, 4), littleEndian(size, 4), content, Bytes(padding),
                   littleEndian(size, 4)});
}

}  // namespace

bool isNanosecond(CaptureVariant variant) {
    return variant == CaptureVariant::nanoLittle || variant == CaptureVariant::nanoBig;
}

bool isLittleEndian(CaptureVariant variant) {
    return variant == CaptureVariant::microLittle || variant == CaptureVariant::nanoLittle;
}

std::string name(CaptureVariant variant) {
    return std::string(isNanosecond(variant) ? "nano" : "micro") +
           (isLittleEndian(variant) ? "Little" : "Big");
}

Bytes captureHeader(CaptureVariant variant, std::uint32_t linkType) {
    bool const little = isLittleEndian(variant);
    Bytes header(captureHeaderSize);
    putNumber(header.data(), magic(variant), 4, little);
    putNumber(&header[4], 2, 2, little);
    putNumber(&header[6], 4, 2, little);
    // The time zone (8..11) and the accuracy of the times (12..15) are zero in every capture.
    putNumber(&header[16], kSnapLength, 4, little);
    putNumber(&header[20], linkType, 4, little);
    return header;
}

std::array<std::uint8_t, recordHeaderSize> recordHeader(CaptureVariant variant,
                                                        std::uint32_t seconds,
                                                        std::uint32_t nanoseconds,
                                                        std::uint32_t inclLen,
                                                        std::uint32_t origLen) {
    bool const little = isLittleEndian(variant);
    std::uint32_t const unit = isNanosecond(variant) ? 1 : nanosecondsPerMicrosecond;
    std::array<std::uint8_t, recordHeaderSize> header{};
    putNumber(header.data(), seconds, 4, little);
    putNumber(&header[4], nanoseconds / unit, 4, little);
    putNumber(&header[8], inclLen, 4, little);
    putNumber(&header[12], origLen, 4, little);
    return header;
}

CaptureBuilder::CaptureBuilder(CaptureVariant variant, std::uint32_t linkType)
    : variant_(variant), bytes_(captureHeader(variant, linkType)) {}

CaptureBuilder& CaptureBuilder::add(std::uint32_t seconds, std::uint32_t nanoseconds,
                                    Bytes const& frame) {
    return addClaiming(seconds, nanoseconds, static_cast<std::uint32_t>(frame.size()), frame);
}

CaptureBuilder& CaptureBuilder::addClaiming(std::uint32_t seconds, std::uint32_t nanoseconds,
                                            std::uint32_t inclLen, Bytes const& octets) {
    addHeader(seconds, nanoseconds, inclLen, octets.size());
    return addRaw(octets);
}

CaptureBuilder& CaptureBuilder::addSnapped(std::uint32_t seconds, std::uint32_t nanoseconds,
                                           std::uint32_t inclLen, Bytes const& frame) {
    Bytes const captured = prefix(frame, inclLen);
    addHeader(seconds, nanoseconds, static_cast<std::uint32_t>(captured.size()), frame.size());
    return addRaw(captured);
}

CaptureBuilder& CaptureBuilder::addRaw(Bytes const& octets) {
    append(bytes_, octets);
    return *this;
}

void CaptureBuilder::addHeader(std::uint32_t seconds, std::uint32_t nanoseconds,
                               std::uint32_t inclLen, std::size_t origLen) {
    auto const header =
        recordHeader(variant_, seconds, nanoseconds, inclLen, static_cast<std::uint32_t>(origLen));
    append(bytes_, Bytes(header.begin(), header.end()));
}

CaptureWriter::CaptureWriter(std::ostream& out, CaptureVariant variant)
    : out_(out), variant_(variant) {
    buffer_.reserve(writerBufferSize);
    put(captureHeader(variant));
}

CaptureWriter::~CaptureWriter() { flush(); }

void CaptureWriter::add(std::uint32_t seconds, std::uint32_t nanoseconds,
                        std::span<std::uint8_t const> frame) {
    auto const size = static_cast<std::uint32_t>(frame.size());
    put(recordHeader(variant_, seconds, nanoseconds, size, size));
    put(frame);
}

void CaptureWriter::flush() {
    out_.write(reinterpret_cast<char const*>(buffer_.data()),
               static_cast<std::streamsize>(buffer_.size()));
    buffer_.clear();
}

void CaptureWriter::put(std::span<std::uint8_t const> octets) {
    if (buffer_.size() + octets.size() > writerBufferSize) {
        flush();
    }
    buffer_.insert(buffer_.end(), octets.begin(), octets.end());
    position_ += octets.size();
}

Bytes nextGenerationCapture(std::vector<Bytes> const& frames) {
    constexpr std::uint32_t section = 0x0A0D0D0A;
    constexpr std::uint32_t interface = 1;
    constexpr std::uint32_t enhancedPacket = 6;
    Bytes out =
        block(section, concat({littleEndian(0x1A2B3C4D, 4), {1, 0, 0, 0}, repeat(0xFF, 8)}));
    append(out, block(interface, concat({littleEndian(linkTypeEthernet, 4), littleEndian(0, 4)})));
    for (Bytes const& frame : frames) {
        auto const size = static_cast<std::uint32_t>(frame.size());
        append(out, block(enhancedPacket, concat({Bytes(12), littleEndian(size, 4),
                                                  littleEndian(size, 4), frame})));
    }
    return out;
}

std::vector<CaptureRecord> readCapture(Bytes const& capture) {
    auto const variant = recognise(capture);
    if (!variant) {
        throw std::runtime_error("not a classic capture file");
    }
    std::vector<CaptureRecord> records;
    std::size_t position = captureHeaderSize;
    while (position + recordHeaderSize <= capture.size()) {
        CaptureRecord record = readHeader(capture, position, *variant);
        std::size_t const captured = position + recordHeaderSize;
        if (capture.size() - captured < record.inclLen) {
            break;
        }
        auto const begin = capture.begin() + static_cast<std::ptrdiff_t>(captured);
        record.frame.assign(begin, begin + static_cast<std::ptrdiff_t>(record.inclLen));
        position = captured + record.inclLen;
        records.push_back(std::move(record));
    }
    return records;
}

std::vector<CaptureRecord> readCapture(std::string const& path) {
    return readCapture(readFile(path));
}

Bytes completedCapture(Bytes const& capture) {
    std::vector<CaptureRecord> const records = readCapture(capture);
    std::size_t end = captureHeaderSize;
    if (!records.empty()) end = records.back().position + recordHeaderSize + records.back().inclLen;
    if (end + recordHeaderSize > capture.size()) return capture;
    CaptureRecord const cut = readHeader(capture, end, *recognise(capture));
    Bytes whole = capture;
    whole.resize(end + recordHeaderSize + cut.inclLen);
    return whole;
}

Bytes readFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    Bytes content{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
        throw std::runtime_error("cannot read " + path);
    }
    return content;
}

}  // namespace TalTest
