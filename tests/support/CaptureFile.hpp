#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest {

/// The four kinds of classic capture file: unit of the time fraction, byte order of the fields.
enum class CaptureVariant { microLittle, microBig, nanoLittle, nanoBig };

inline constexpr std::array<CaptureVariant, 4> captureVariants = {
    CaptureVariant::microLittle, CaptureVariant::microBig, CaptureVariant::nanoLittle,
    CaptureVariant::nanoBig};

[[nodiscard]] bool isNanosecond(CaptureVariant variant);
[[nodiscard]] bool isLittleEndian(CaptureVariant variant);

/// "microLittle" and so on: for the names of parameterised tests.
[[nodiscard]] std::string name(CaptureVariant variant);

inline constexpr std::size_t captureHeaderSize = 24;
inline constexpr std::size_t recordHeaderSize = 16;
inline constexpr std::uint32_t linkTypeEthernet = 1;

/// The header a capture begins with: magic number, version 2.4, snapshot length, link type.
[[nodiscard]] Bytes captureHeader(CaptureVariant variant,
                                  std::uint32_t linkType = linkTypeEthernet);

/// The header of one record; the time fraction is written in the variant's unit.
[[nodiscard]] std::array<std::uint8_t, recordHeaderSize> recordHeader(CaptureVariant variant,
                                                                      std::uint32_t seconds,
                                                                      std::uint32_t nanoseconds,
                                                                      std::uint32_t inclLen,
                                                                      std::uint32_t origLen);

/// A capture built in memory, record by record.
class CaptureBuilder {
public:
    explicit CaptureBuilder(CaptureVariant variant = CaptureVariant::microLittle,
                            std::uint32_t linkType = linkTypeEthernet);

    /// Adds a record that holds the whole frame.
    CaptureBuilder& add(std::uint32_t seconds, std::uint32_t nanoseconds, Bytes const& frame);

    /// Adds a record that claims `inclLen` captured octets, whatever `octets` holds.
    CaptureBuilder& addClaiming(std::uint32_t seconds, std::uint32_t nanoseconds,
                                std::uint32_t inclLen, Bytes const& octets);

    /// Adds a record of the first `inclLen` octets of the frame, as a snapshot length makes it.
    CaptureBuilder& addSnapped(std::uint32_t seconds, std::uint32_t nanoseconds,
                               std::uint32_t inclLen, Bytes const& frame);

    /// Adds the octets as they are.
    CaptureBuilder& addRaw(Bytes const& octets);

    /// The capture so far; valid until the next call that adds to it.
    [[nodiscard]] Bytes const& bytes() const { return bytes_; }

    /// Where the header of the next record will stand.
    [[nodiscard]] std::uint64_t nextRecordPosition() const { return bytes_.size(); }

private:
    void addHeader(std::uint32_t seconds, std::uint32_t nanoseconds, std::uint32_t inclLen,
                   std::size_t origLen);

    CaptureVariant variant_;
    Bytes bytes_;
};

/// A capture written to a stream as it is made, for captures too big for memory.
class CaptureWriter {
public:
    /// Writes the capture's header to `out`, which must outlive the writer.
    CaptureWriter(std::ostream& out, CaptureVariant variant);
    CaptureWriter(CaptureWriter const&) = delete;
    CaptureWriter& operator=(CaptureWriter const&) = delete;
    /// Flushes.
    ~CaptureWriter();

    /// Adds a record that holds the whole frame.
    void add(std::uint32_t seconds, std::uint32_t nanoseconds, std::span<std::uint8_t const> frame);

    /// Hands what is buffered to the stream; whether that went well, the stream knows.
    void flush();

    /// Where the header of the next record will stand, in a stream that was empty.
    [[nodiscard]] std::uint64_t nextRecordPosition() const { return position_; }

private:
    void put(std::span<std::uint8_t const> octets);

    std::ostream& out_;
    CaptureVariant variant_;
    Bytes buffer_;
    std::uint64_t position_ = 0;
};

/// A next-generation file of these frames, little-endian, their times 0: what is no classic
/// capture.
[[nodiscard]] Bytes nextGenerationCapture(std::vector<Bytes> const& frames);

/// One record as readCapture() found it.
struct CaptureRecord {
    /// Offset in the file of the record's header.
    std::uint64_t position = 0;
    std::uint32_t seconds = 0;
    /// In a microsecond file a thousand times what the file says, in 32 bits.
    std::uint32_t nanoseconds = 0;
    std::uint32_t inclLen = 0;
    std::uint32_t origLen = 0;
    Bytes frame = {};

    bool operator==(CaptureRecord const&) const = default;
};

/// The complete records of a capture, up to the first that is cut short.
/// @throws std::runtime_error when it begins with none of the four magic numbers
[[nodiscard]] std::vector<CaptureRecord> readCapture(Bytes const& capture);

/// The same for a file.
/// @throws std::runtime_error as well when the file cannot be read
[[nodiscard]] std::vector<CaptureRecord> readCapture(std::string const& path);

/// The capture with its last record made whole: zeros for the octets of the frame that are missing.
/// As it is when no record is cut after its header.
/// @throws std::runtime_error as readCapture()
[[nodiscard]] Bytes completedCapture(Bytes const& capture);

/// All octets of a file.
/// @throws std::runtime_error when it cannot be read
[[nodiscard]] Bytes readFile(std::string const& path);

}  // namespace TalTest
