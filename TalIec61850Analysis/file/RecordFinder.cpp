#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecordFinder.hpp>
#include <TalIec61850Analysis/file/RecordSearch.hpp>
#include <algorithm>

namespace TalIec61850Analysis::detail {

namespace {

constexpr std::uint64_t kNearestPlaces = std::uint64_t{1} << 20U;
constexpr std::uint64_t kMostPlaces = 16384;

/// Whether a record holds an offset: that of its header, of its frame, or between.
bool holds(CaptureRecord const& record, std::uint64_t fileOffset) {
    return record.fileOffset <= fileOffset && fileOffset < record.frameOffset + record.capturedSize;
}

}  // namespace

RecordFinder::RecordFinder(Descriptor const& file, std::uint64_t fileSize, std::uint64_t fileOffset,
                           Decoder const& decoder)
    : file_(&file),
      fileSize_(fileSize),
      spacing_(std::max(kNearestPlaces, fileSize / kMostPlaces)),
      places_{{.fileOffset = fileOffset, .decoder = decoder}} {}

void RecordFinder::note(RecordWalk const& walk) {
    if (walk.walked().isFinished()) {
        isWalked_ = true;
    } else if (walk.position() > places_.back().fileOffset + spacing_) {
        places_.push_back(
            {.fileOffset = walk.position(), .decoder = withCounting(walk.decoder(), false)});
    }
}

void RecordFinder::grow(std::uint64_t fileSize) {
    fileSize_ = fileSize;
    isWalked_ = false;
    for (Place& place : places_) {
        place.decoder = withFileSize(place.decoder, fileSize);
    }
}

std::optional<CaptureRecord> RecordFinder::find(std::uint64_t fileOffset) {
    if (fileOffset < places_.front().fileOffset || fileOffset >= fileSize_) {
        return std::nullopt;
    }
    bool const isFar = !isWalked_ && fileOffset > places_.back().fileOffset + spacing_;
    auto const found = isFar ? search(fileOffset) : std::nullopt;
    return found ? found : walkTo(fileOffset);
}

std::optional<CaptureRecord> RecordFinder::search(std::uint64_t fileOffset) {
    SearchPlace place{.file = *file_,
                      .fileSize = fileSize_,
                      .start = places_.front().fileOffset,
                      .fileOffset = fileOffset,
                      .isLittleEndian = false,
                      .isNanosecond = false};
    Decoder decoder = places_.back().decoder;
    std::optional<std::uint64_t> found;
    if (auto const* const classic = std::get_if<ClassicDecoder>(&decoder)) {
        place.isLittleEndian = classic->variant().isLittleEndian;
        place.isNanosecond = classic->variant().isNanosecond;
        found = searchClassic(place);
    } else {
        // The section and its interfaces come before the first packet.
        if (places_.size() == 1) {
            RecordWalk first(*file_, fileSize_, place.start, decoder);
            static_cast<void>(first.next());
            decoder = first.decoder();
        }
        auto const& section = std::get<NextGenerationDecoder>(decoder);
        // Without a length, another section may begin anywhere before.
        if (!section.sectionHolds(fileOffset)) {
            return std::nullopt;
        }
        place.isLittleEndian = section.isLittleEndian();
        found = searchNextGeneration(place);
    }
    auto const record = found ? decodeAt(*found, decoder) : std::nullopt;
    return record && holds(*record, fileOffset) ? record : std::nullopt;
}

std::optional<CaptureRecord> RecordFinder::decodeAt(std::uint64_t recordOffset,
                                                    Decoder const& decoder) const {
    // One record does not take more than a walk takes anyhow.
    RecordWalk walk(*file_, fileSize_, recordOffset, decoder);
    auto const records = walk.next();
    bool const isIt = !records.empty() && records.front().record.fileOffset == recordOffset;
    return isIt ? std::optional(records.front().record) : std::nullopt;
}

std::optional<CaptureRecord> RecordFinder::walkTo(std::uint64_t fileOffset) {
    auto const after =
        std::partition_point(places_.begin(), places_.end(),
                             [&](Place const& place) { return place.fileOffset <= fileOffset; });
    Place const from = *std::prev(after);
    RecordWalk walk(*file_, fileSize_, from.fileOffset, from.decoder);
    while (true) {
        auto const records = walk.next();
        note(walk);
        if (records.empty()) {
            RecordView const* const cut = walk.walked().cut();
            return cut != nullptr && holds(cut->record, fileOffset) ? std::optional(cut->record)
                                                                    : std::nullopt;
        }
        auto const found =
            std::partition_point(records.begin(), records.end(), [&](RecordView const& view) {
                return view.record.frameOffset + view.record.capturedSize <= fileOffset;
            });
        if (found != records.end()) {
            return holds(found->record, fileOffset) ? std::optional(found->record) : std::nullopt;
        }
    }
}

}  // namespace TalIec61850Analysis::detail
