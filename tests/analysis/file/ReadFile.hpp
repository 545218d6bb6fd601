#pragma once

// A capture file read whole, as values.

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <string>
#include <vector>

#include "support/Bytes.hpp"

namespace TalIec61850Analysis {

/// What `CaptureFile` tells of a file.
struct ReadCapture {
    struct Record {
        CaptureRecord record;
        TalTest::Bytes frame;

        friend bool operator==(Record const&, Record const&) = default;
    };

    std::vector<Record> records;
    std::vector<CaptureDamage> damages;
    std::optional<CaptureDamage> damage;
    std::optional<Record> cut;
    std::vector<CaptureInterface> interfaces;

    friend bool operator==(ReadCapture const&, ReadCapture const&) = default;

    [[nodiscard]] std::vector<CaptureDamageKind> damageKinds() const {
        std::vector<CaptureDamageKind> kinds;
        for (CaptureDamage const& each : damages) {
            kinds.push_back(each.kind);
        }
        return kinds;
    }
};

/// Reads a file from its first record to its last.
inline ReadCapture readWhole(std::string const& path, ReadMode mode = ReadMode::plain) {
    auto const toOwned = [](RecordView const& view) {
        return ReadCapture::Record{view.record, {view.frame.begin(), view.frame.end()}};
    };
    CaptureFile file(path, mode);
    ReadCapture read;
    while (auto const* const view = file.next()) {
        read.records.push_back(toOwned(*view));
    }
    if (auto const* const cut = file.cutRecord()) {
        read.cut = toOwned(*cut);
    }
    read.damages.assign(file.damages().begin(), file.damages().end());
    read.damage = file.damage();
    read.interfaces.assign(file.interfaces().begin(), file.interfaces().end());
    return read;
}

}  // namespace TalIec61850Analysis
