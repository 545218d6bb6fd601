#include "tools/output/CaptureWriter.hpp"

#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <array>
#include <bit>
#include <string_view>

namespace TalIec61850Tools {

using TalIec61850Analysis::RecordView;

namespace {

struct FileHeader {
    std::uint32_t magic = 0xA1B23C4D;
    std::uint16_t majorVersion = 2;
    std::uint16_t minorVersion = 4;
    std::uint32_t zone = 0;
    std::uint32_t accuracy = 0;
    /// As much as the largest record has in any file that is read.
    std::uint32_t snapLength = 2U << 20U;
    std::uint32_t linkType = 0;
};
static_assert(sizeof(FileHeader) == 24);

struct RecordHeader {
    std::uint32_t seconds = 0;
    std::uint32_t nanoseconds = 0;
    std::uint32_t capturedSize = 0;
    std::uint32_t originalSize = 0;
};
static_assert(sizeof(RecordHeader) == 16);

template <typename Header>
void writeHeader(TextSink const& sink, Header const& header) {
    auto const octets = std::bit_cast<std::array<char, sizeof(Header)>>(header);
    sink({octets.data(), octets.size()});
}

}  // namespace

void CaptureWriter::begin(std::uint16_t linkType) {
    writeHeader(sink_, FileHeader{.linkType = linkType});
    linkType_ = linkType;
}

bool CaptureWriter::write(RecordView const& view) {
    if (!linkType_) {
        begin(view.record.linkType);
    }
    if (view.record.linkType != *linkType_) {
        return false;
    }
    withoutTime_ += view.record.time ? 0 : 1;
    constexpr std::uint64_t giga = 1'000'000'000;
    std::uint64_t const time =
        view.record.time ? TalIec61850Analysis::nanosecondsSince1970(*view.record.time) : 0;
    writeHeader(sink_, RecordHeader{.seconds = static_cast<std::uint32_t>(time / giga),
                                    .nanoseconds = static_cast<std::uint32_t>(time % giga),
                                    .capturedSize = static_cast<std::uint32_t>(view.frame.size()),
                                    .originalSize = view.record.originalSize});
    sink_({reinterpret_cast<char const*>(view.frame.data()), view.frame.size()});
    return true;
}

void CaptureWriter::finish() {
    if (!linkType_) {
        begin(TalIec61850Analysis::kLinkTypeEthernet);
    }
}

}  // namespace TalIec61850Tools
