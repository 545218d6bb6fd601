#include <sys/stat.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecogniseStart.hpp>
#include <TalIec61850Analysis/file/RecordFinder.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

namespace TalIec61850Analysis {

namespace {

using TalIec61850Parser::wire::GlobalHeader;
using TalIec61850Parser::wire::kGlobalHeaderSize;

/// Asked by its end, because a device has no size of its own.
std::uint64_t sizeOf(Descriptor const& file) {
    off_t const end = ::lseek(file.number(), 0, SEEK_END);
    if (end < 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return static_cast<std::uint64_t>(end);
}

FileIdentity identityOf(Descriptor const& file) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return {.device = status.st_dev, .inode = status.st_ino};
}

/// The one interface of a classic capture.
detail::InterfaceTable classicTable(Descriptor const& file,
                                    TalIec61850Parser::wire::CaptureVariant variant) {
    std::array<std::uint8_t, kGlobalHeaderSize> octets{};
    static_cast<void>(detail::readAt(file, 0, octets));
    auto const header = GlobalHeader::read(octets, variant.isLittleEndian);
    CaptureInterface only;
    only.linkType = header.linkType;
    only.snapLength = header.snapLength;
    only.unitExponent = variant.isNanosecond ? 9 : 6;
    return {.interfaces = {only}, .uses = {{}}};
}

}  // namespace

/// It stays where it is, since parts of it refer to others.
struct CaptureFile::State {
    State(std::string const& path, ReadMode readMode)
        : mode(readMode),
          file(detail::openToRead(path)),
          size(sizeOf(file)),
          identity(identityOf(file)),
          kind(detail::recogniseStart(file)),
          table(kind.variant ? classicTable(file, *kind.variant) : detail::InterfaceTable{}),
          finder(file, size, start(), decoder()),
          walk(file, size, start(), detail::withCounting(decoder(), true), mode) {
        if (!kind.isCapture()) {
            walk.finish({.kind = CaptureDamageKind::notCapture});
        } else if (size < start()) {
            walk.finish({.kind = CaptureDamageKind::fileHeaderCut});
        }
    }

    /// Where the first record or block is.
    [[nodiscard]] std::uint64_t start() const {
        return kind.isNextGeneration ? 0 : kGlobalHeaderSize;
    }

    [[nodiscard]] detail::Decoder decoder() {
        if (kind.variant) {
            return detail::ClassicDecoder(*kind.variant, size, table);
        }
        return detail::NextGenerationDecoder(size, table);
    }

    ReadMode mode;
    Descriptor file;
    std::uint64_t size;
    FileIdentity identity;
    TalIec61850Parser::wire::CaptureKind kind;
    detail::InterfaceTable table;
    detail::RecordFinder finder;
    detail::RecordWalk walk;
    std::vector<std::uint8_t> frame;
};

CaptureFile::CaptureFile(std::string const& path, ReadMode mode)
    : state_(std::make_unique<State>(path, mode)) {}
CaptureFile::CaptureFile(CaptureFile&& other) noexcept = default;
CaptureFile& CaptureFile::operator=(CaptureFile&& other) noexcept = default;
CaptureFile::~CaptureFile() = default;

bool CaptureFile::readMore() {
    next_ = end_ = nullptr;
    auto const records = state_->walk.next();
    state_->finder.note(state_->walk);
    next_ = records.data();
    end_ = next_ + records.size();
    return !records.empty();
}

bool CaptureFile::readOn() {
    detail::RecordWalk& walk = state_->walk;
    auto const& damage = walk.walked().final();
    bool const mayGrow = !damage || damage->kind == CaptureDamageKind::recordCut ||
                         damage->kind == CaptureDamageKind::recordHeaderCut;
    if (next_ != end_ || !walk.walked().isFinished()) {
        return true;
    }
    if (!mayGrow) {
        return false;
    }
    std::uint64_t const size = sizeOf(state_->file);
    if (size <= state_->size) {
        return false;
    }
    state_->size = size;
    state_->finder.grow(size);
    walk = detail::RecordWalk(state_->file, size, walk.position(),
                              detail::withFileSize(walk.decoder(), size), state_->mode);
    return true;
}

std::uint64_t CaptureFile::offsetAfter() const noexcept { return state_->walk.position(); }

std::optional<CaptureDamage> const& CaptureFile::damage() const noexcept {
    return state_->walk.walked().final();
}

std::span<CaptureDamage const> CaptureFile::damages() const noexcept {
    return state_->walk.walked().damages();
}

std::uint64_t CaptureFile::damageCount() const noexcept {
    return state_->walk.walked().damageCount();
}

RecordView const* CaptureFile::cutRecord() const noexcept { return state_->walk.walked().cut(); }

CaptureFormat CaptureFile::format() const noexcept {
    return state_->kind.isNextGeneration ? CaptureFormat::nextGeneration : CaptureFormat::classic;
}

std::uint64_t CaptureFile::size() const noexcept { return state_->size; }

FileIdentity CaptureFile::identity() const noexcept { return state_->identity; }

std::span<CaptureInterface const> CaptureFile::interfaces() const noexcept {
    return state_->table.interfaces;
}

std::optional<CaptureRecord> CaptureFile::recordAt(std::uint64_t fileOffset) {
    return state_->kind.isCapture() ? state_->finder.find(fileOffset) : std::nullopt;
}

std::span<std::uint8_t const> CaptureFile::frameOf(CaptureRecord const& record) {
    auto& frame = state_->frame;
    frame.resize(std::min<std::size_t>(record.capturedSize, detail::kLongestFrame));
    frame.resize(detail::readAt(state_->file, record.frameOffset, frame));
    return frame;
}

}  // namespace TalIec61850Analysis
