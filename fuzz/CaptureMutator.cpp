#include "fuzz/CaptureMutator.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "fuzz/FrameMutator.hpp"
#include "support/CaptureFile.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

constexpr std::size_t kMaxRecords = 24;

/// A capture taken apart; inclLen is what the header of the record will say.
struct Records {
    CaptureVariant variant = CaptureVariant::microLittle;
    std::vector<CaptureRecord> all;
};

std::optional<CaptureVariant> variantOf(Bytes const& capture) {
    for (CaptureVariant const variant : captureVariants)
        if (prefix(capture, 4) == prefix(captureHeader(variant), 4)) return variant;
    return std::nullopt;
}

Bytes joined(Records const& records) {
    CaptureBuilder capture(records.variant);
    for (CaptureRecord const& record : records.all)
        capture.addClaiming(record.seconds, record.nanoseconds, record.inclLen, record.frame);
    return capture.bytes();
}

std::uint32_t anyNumber(Random& random) {
    constexpr std::array<std::uint32_t, 8> odd = {0, 1, 13, 14, 17, 60, 999'999'999, 0xFFFFFFFF};
    return odd[random() % odd.size()];
}

void mutateHeader(CaptureRecord& record, Random& random) {
    switch (random() % 4) {
        case 0:
            record.seconds = anyNumber(random);
            break;
        case 1:
            record.nanoseconds = anyNumber(random);
            break;
        case 2:
            record.inclLen = anyNumber(random);
            break;
        default:
            record.inclLen += static_cast<std::uint32_t>(random() % 5) - 2U;
    }
}

/// Copies of a record, one after the other or where they may fall, with an octet changed or not.
void addCopies(std::vector<CaptureRecord>& all, CaptureRecord copy, Random& random) {
    bool const isChanged = random() % 2 == 0 && !copy.frame.empty();
    for (std::size_t count = random() % 8; all.size() < kMaxRecords; --count) {
        if (isChanged) copy.frame[random() % copy.frame.size()] ^= 1U;
        ++copy.seconds;
        all.insert(all.begin() + static_cast<std::ptrdiff_t>(random() % (all.size() + 1)), copy);
        if (count == 0) break;
    }
}

void mutateRecords(Records& records, Random& random) {
    auto& all = records.all;
    if (all.empty()) all.emplace_back();
    std::size_t const chosen = random() % all.size();
    CaptureRecord& record = all[chosen];
    switch (random() % 12) {
        case 0:
            addCopies(all, record, random);
            break;
        case 1:
            all.erase(all.begin() + static_cast<std::ptrdiff_t>(chosen));
            break;
        case 2:
            std::swap(record, all[random() % all.size()]);
            break;
        case 3:
            mutateHeader(record, random);
            break;
        case 4:
            records.variant = captureVariants[random() % captureVariants.size()];
            break;
        default:
            record.frame = mutatedFrame(std::move(record.frame), random);
            record.inclLen = static_cast<std::uint32_t>(record.frame.size());
    }
}

}  // namespace

Bytes mutatedCapture(Bytes const& capture, Random& random) {
    std::size_t const choice = random() % 16;
    if (choice == 0) return mutatedOctets(capture);
    if (choice == 1) return prefix(capture, random() % (capture.size() + 1));
    auto const variant = variantOf(capture);
    Records records;
    if (variant) records = {*variant, readCapture(capture)};
    for (std::size_t i = 0; i <= choice % 3; ++i) mutateRecords(records, random);
    return joined(records);
}

Bytes crossedCaptures(Bytes const& a, Bytes const& b, Random& random) {
    auto const variant = variantOf(a);
    if (!variant || !variantOf(b)) return a;
    Records records{*variant, readCapture(a)};
    for (CaptureRecord const& record : readCapture(b))
        if (random() % 2 == 0 && records.all.size() < kMaxRecords) records.all.push_back(record);
    return joined(records);
}

}  // namespace TalFuzz
