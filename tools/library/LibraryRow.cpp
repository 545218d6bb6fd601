#include "tools/library/LibraryRow.hpp"

#include <algorithm>
#include <tuple>

#include "tools/library/IndexedPackage.hpp"

namespace TalIec61850Tools {

using TalIec61850Parser::Db;
using TalIec61850Parser::Package;

namespace {

void addTime(LibraryRow& row, CaptureTime time) {
    ++row.timedPackets;
    row.firstTime = std::min(row.firstTime.value_or(time), time);
    row.lastTime = std::max(row.lastTime.value_or(time), time);
}

template <typename Stream>
LibraryRow rowOf(Stream const& stream) {
    LibraryRow row;
    static_cast<LibraryStream&>(row) = identityOf(stream);
    row.files = stream.files.size();
    for (auto const& file : stream.files) {
        row.packets += file.packages.size();
        for (Package const& package : file.packages) {
            if (isPlaced(package)) {
                addTime(row, toCaptureTime(package.time));
            }
        }
    }
    return row;
}

bool rowComesBefore(LibraryRow const& a, LibraryRow const& b) {
    auto const figures = [](LibraryRow const& row) {
        return std::tie(row.firstTime, row.lastTime, row.packets);
    };
    if (comesBefore(a, b) || comesBefore(b, a)) {
        return comesBefore(a, b);
    }
    return figures(a) < figures(b);
}

}  // namespace

std::optional<double> LibraryRow::packetsPerSecond() const {
    if (timedPackets < 2 || firstTime == lastTime) {
        return std::nullopt;
    }
    std::chrono::duration<double> const elapsed = *lastTime - *firstTime;
    return static_cast<double>(timedPackets - 1) / elapsed.count();
}

std::vector<LibraryRow> collectRows(Db const& db) {
    std::vector<LibraryRow> rows;
    rows.reserve(db.gooseProto.streams.size() + db.svProto.streams.size());
    for (auto const& goose : db.gooseProto.streams) {
        rows.push_back(rowOf(goose));
    }
    for (auto const& sv : db.svProto.streams) {
        rows.push_back(rowOf(sv));
    }
    std::stable_sort(rows.begin(), rows.end(), rowComesBefore);
    return rows;
}

}  // namespace TalIec61850Tools
