// A file read as a capture of either format: what it tells is in the file, and single records are
// found by their offsets as the walk has them.

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/file/ReadAt.hpp>
#include <TalIec61850Analysis/file/RecordMap.hpp>
#include <TalIec61850Analysis/file/RecordSearch.hpp>
#include <TalIec61850Parser/wire/CaptureFormat.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "fuzz/Check.hpp"
#include "fuzz/FuzzInput.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"
#include "support/Bytes.hpp"

namespace {

using namespace TalFuzz;
using namespace TalIec61850Analysis;
using TalTest::Bytes;

constexpr std::size_t kAskedOffsets = 8;

/// The records of a file, the cut one last.
struct WalkedFile {
    std::vector<CaptureRecord> records;
    bool isDamaged = false;
};

void requireInFile(RecordView const& view, Bytes const& file, std::uint64_t after) {
    CaptureRecord const& record = view.record;
    require(record.fileOffset >= after && record.frameOffset > record.fileOffset,
            "records follow one another");
    std::uint64_t const end = record.frameOffset + record.capturedSize;
    require(end <= file.size() && view.frame.size() == record.capturedSize,
            "a frame is in the file");
    auto const held = file.begin() + static_cast<std::ptrdiff_t>(record.frameOffset);
    require(std::equal(view.frame.begin(), view.frame.end(), held), "a frame is what the file has");
    require(!record.time || record.time->time_since_epoch().count() >= 0,
            "a time is not before 1970");
}

WalkedFile walk(CaptureFile& capture, Bytes const& file) {
    WalkedFile walked;
    std::uint64_t after = 0;
    auto const take = [&](RecordView const& view) {
        requireInFile(view, file, after);
        after = view.record.frameOffset + view.record.capturedSize;
        walked.records.push_back(view.record);
    };
    while (auto const* const view = capture.next()) {
        take(*view);
    }
    std::uint64_t counted = 0;
    for (CaptureInterface const& interface : capture.interfaces()) {
        counted += interface.records;
    }
    require(counted == walked.records.size(), "each record is counted");
    if (auto const* const cut = capture.cutRecord()) {
        require(capture.damage().has_value(), "a cut record is damage");
        take(*cut);
    }
    for (CaptureDamage const& damage : capture.damages()) {
        require(damage.fileOffset <= file.size(), "damage is in the file");
    }
    walked.isDamaged = capture.damageCount() > 0;
    return walked;
}

std::optional<std::size_t> numberAt(WalkedFile const& walked, std::uint64_t fileOffset) {
    for (std::size_t i = 0; i < walked.records.size(); ++i) {
        CaptureRecord const& record = walked.records[i];
        if (record.fileOffset <= fileOffset &&
            fileOffset < record.frameOffset + record.capturedSize) {
            return i;
        }
    }
    return std::nullopt;
}

void requireMap(WalkedFile const& walked) {
    RecordMap map;
    for (CaptureRecord const& record : walked.records) {
        map.add(record.fileOffset);
    }
    for (std::size_t i = 0; i < walked.records.size(); ++i) {
        require(map.offsetOf(i) == walked.records[i].fileOffset, "a map has each record");
        require(map.numberAt(walked.records[i].fileOffset) == i, "a map has each number");
    }
}

/// Whether a record of a classic capture has the numbers of a usual one.
bool isUsual(Bytes const& file, CaptureRecord const& record) {
    using TalIec61850Parser::wire::RecordHeader;
    bool const isLittleEndian = file[0] == 0xD4 || file[0] == 0x4D;
    bool const isNanosecond = file[0] == 0x4D || file[2] == 0x3C;
    auto const header = RecordHeader::read(
        std::span(file).subspan(static_cast<std::size_t>(record.fileOffset)), isLittleEndian);
    return record.capturedSize <= record.originalSize && record.originalSize <= 256U << 10U &&
           header.tsUsec < (isNanosecond ? 1'000'000'000U : 1'000'000U);
}

/// A search finds the record that holds the offset, or none, where it and those before are usual.
void requireSearch(Bytes const& file, std::string const& path, CaptureFormat format,
                   std::uint64_t fileOffset, WalkedFile const& walked,
                   std::optional<std::size_t> number) {
    constexpr detail::SearchLimits small = {.window = 512, .before = 2};
    bool const isClassic = format == CaptureFormat::classic;
    std::uint8_t const first = file[isClassic ? 0 : 8];
    bool const isLittleEndian = first == 0xD4 || first == 0x4D;
    auto const descriptor = detail::openToRead(path);
    detail::SearchPlace const place{.file = descriptor,
                                    .fileSize = file.size(),
                                    .start = isClassic ? 24U : 0U,
                                    .fileOffset = fileOffset,
                                    .isLittleEndian = isLittleEndian,
                                    .isNanosecond = first == 0x4D || file[2] == 0x3C};
    auto const found = isClassic ? detail::searchClassic(place, small)
                                 : detail::searchNextGeneration(place, small);
    if (!found || !number || *number < small.before) {
        return;
    }
    auto const last = walked.records.begin() + static_cast<std::ptrdiff_t>(*number);
    auto const from = last - small.before;
    bool const areUsual = !isClassic || std::all_of(from, last + 1, [&](auto const& record) {
        return isUsual(file, record);
    });
    require(!areUsual || from->fileOffset + small.window < fileOffset || *found == last->fileOffset,
            "a search finds the record of the walk, or none");
}

bool hasOneSection(Bytes const& file) {
    Bytes const rest(file.begin() + 4, file.end());
    return !TalTest::find(rest, {0x0A, 0x0D, 0x0D, 0x0A});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally whole("captures are read without damage");
    static TalTest::ScratchFile scratch;
    FuzzInput input({data, size});
    std::vector<std::uint64_t> asked;
    for (std::size_t i = 0; i < kAskedOffsets; ++i) {
        asked.push_back(input.number());
    }
    Bytes const file = input.octets(size);
    scratch.assign(file);
    CaptureFile capture(scratch.path());
    WalkedFile const walked = walk(capture, file);
    requireMap(walked);
    CaptureFile fresh(scratch.path());
    bool const isSearched =
        !walked.isDamaged && (capture.format() == CaptureFormat::classic || hasOneSection(file));
    for (std::uint64_t const any : asked) {
        std::uint64_t const offset = any % (file.size() + 2);
        auto const number = numberAt(walked, offset);
        std::optional<CaptureRecord> expected;
        if (number) {
            expected = walked.records[*number];
        }
        require(fresh.recordAt(offset) == expected, "a record is found by its offset");
        require(capture.recordAt(offset) == expected, "also after a walk");
        if (isSearched) {
            requireSearch(file, scratch.path(), capture.format(), offset, walked, number);
        }
    }
    whole.add(walked.isDamaged || walked.records.empty() ? 0 : 1, 1);
    return 0;
}
