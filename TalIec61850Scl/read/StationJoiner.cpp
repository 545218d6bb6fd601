#include <TalIec61850Scl/read/StationJoiner.hpp>
#include <algorithm>
#include <utility>

namespace TalIec61850Scl::detail {

namespace {

using TalIec61850Analysis::StreamProtocol;

constexpr std::size_t kNotKept = static_cast<std::size_t>(-1);

/// Addresses of one control block that are looked at: one for each access point and file.
constexpr std::size_t kMostAddresses = 16;

std::string addressKey(StreamProtocol protocol, std::string_view ied, std::string_view ldInst,
                       std::string_view name) {
    std::string key(1, protocol == StreamProtocol::sv ? 'S' : 'G');
    return key.append(ied).append(1, '\n').append(ldInst).append(1, '\n').append(name);
}

std::string attachmentKey(std::string_view ied, std::string_view accessPoint) {
    return std::string(ied).append(1, '\n').append(accessPoint);
}

/// Whether two data sets are sent in the same way.
bool isSameMember(DataSetMember const& a, DataSetMember const& b) {
    return a.path == b.path && a.name == b.name && a.fc == b.fc && a.bType == b.bType;
}

std::string subscriberKey(Subscriber const& subscriber) {
    std::string key = subscriber.ied;
    return key.append(1, '\n')
        .append(subscriber.node)
        .append(1, '\n')
        .append(subscriber.intAddr)
        .append(1, '\n')
        .append(subscriber.member ? std::to_string(*subscriber.member) : "")
        .append(1, static_cast<char>('0' + static_cast<int>(subscriber.source)));
}

}  // namespace

StationJoiner::StationJoiner(std::vector<std::string> paths) { station_.files = std::move(paths); }

void StationJoiner::add(FileContent content) { files_.push_back(std::move(content)); }

StationDescription StationJoiner::join() {
    joinIeds();
    joinAddresses();
    joinControlBlocks();
    joinSubscribers();
    noteUnused();
    for (FileContent& file : files_) {
        auto diagnostics = file.diagnostics.take();
        std::move(diagnostics.begin(), diagnostics.end(), std::back_inserter(station_.diagnostics));
    }
    return std::move(station_);
}

void StationJoiner::joinIeds() {
    for (FileContent const& file : files_) {
        for (std::string const& ied : file.ieds) {
            if (ieds_.insert(ied).second) {
                station_.ieds.push_back(ied);
            }
        }
    }
}

void StationJoiner::joinAddresses() {
    for (std::size_t file = 0; file < files_.size(); ++file) {
        std::vector<FoundAddress> const& all = files_[file].addresses;
        for (std::size_t i = 0; i < all.size(); ++i) {
            auto& numbers =
                addresses_[addressKey(all[i].protocol, all[i].ied, all[i].ldInst, all[i].name)]
                    .numbers;
            if (numbers.size() < kMostAddresses) {
                numbers.push_back({.file = file, .address = i});
            }
        }
        for (FoundAccessPoint const& each : files_[file].accessPoints) {
            attachments_.try_emplace(attachmentKey(each.ied, each.name), each.redundancy);
        }
    }
}

void StationJoiner::giveAddress(std::size_t file, FoundControlBlock& found) {
    ControlBlock& block = found.block;
    if (auto const attachment = attachments_.find(attachmentKey(block.ied, found.accessPoint));
        attachment != attachments_.end()) {
        block.redundancy = attachment->second;
    }
    auto const known =
        addresses_.find(addressKey(block.protocol, block.ied, block.ldInst, block.name));
    if (known == addresses_.end()) {
        return;
    }
    known->second.isUsed = true;
    // Of its own file before others, and there of its own access point.
    FoundAddress const* best = nullptr;
    int bestRank = -1;
    for (AddressNumber const& number : known->second.numbers) {
        FoundAddress const& each = files_[number.file].addresses[number.address];
        int const rank =
            (number.file == file ? 2 : 0) + (each.accessPoint == found.accessPoint ? 1 : 0);
        if (rank > bestRank) {
            best = &each;
            bestRank = rank;
        }
    }
    if (best == nullptr) {
        return;
    }
    block.accessPoint = best->accessPoint;
    block.address = best->address;
    block.redundancy = best->redundancy;
}

void StationJoiner::joinControlBlocks() {
    for (std::size_t file = 0; file < files_.size(); ++file) {
        std::vector<std::size_t> dataSets(files_[file].dataSets.size(), kNotKept);
        for (FoundControlBlock& found : files_[file].controlBlocks) {
            addControlBlock(file, found, dataSets);
        }
        files_[file].dataSets = {};
    }
}

void StationJoiner::addControlBlock(std::size_t file, FoundControlBlock& found,
                                    std::vector<std::size_t>& dataSets) {
    giveAddress(file, found);
    ControlBlock& block = found.block;
    DataSet* const dataSet = block.dataSet ? &files_[file].dataSets[*block.dataSet] : nullptr;
    std::size_t const* const keptDataSet =
        dataSet != nullptr && dataSets[*block.dataSet] != kNotKept ? &dataSets[*block.dataSet]
                                                                   : nullptr;
    auto const [known, isNew] =
        references_.try_emplace(block.reference, station_.controlBlocks.size());
    if (!isNew) {
        ControlBlock& kept = station_.controlBlocks[known->second];
        DataSet const* const other = dataSet == nullptr       ? nullptr
                                     : keptDataSet == nullptr ? dataSet
                                                              : &station_.dataSets[*keptDataSet];
        if (!isSame(kept, block, other)) {
            files_[file].diagnostics.add(DiagnosticCode::duplicateControlBlock, block.place,
                                         block.reference);
        } else {
            std::move(block.subscribers.begin(), block.subscribers.end(),
                      std::back_inserter(kept.subscribers));
        }
        return;
    }
    if (dataSet != nullptr) {
        if (keptDataSet == nullptr) {
            dataSets[*block.dataSet] = station_.dataSets.size();
            station_.dataSets.push_back(std::move(*dataSet));
        }
        block.dataSet = dataSets[*block.dataSet];
    }
    names_.push_back({.name = {.ied = block.ied,
                               .ldInst = block.ldInst,
                               .node = std::move(found.node),
                               .name = block.name},
                      .controlBlock = known->second});
    station_.controlBlocks.push_back(std::move(block));
}

bool StationJoiner::isSame(ControlBlock const& kept, ControlBlock const& other,
                           DataSet const* otherDataSet) const {
    bool const isSameBlock =
        kept.ied == other.ied && kept.ldInst == other.ldInst && kept.id == other.id &&
        kept.dataSetReference == other.dataSetReference && kept.confRev == other.confRev &&
        kept.address == other.address && kept.fixedOffsets == other.fixedOffsets &&
        kept.smpRate == other.smpRate && kept.smpRateUnit == other.smpRateUnit &&
        kept.nofASDU == other.nofASDU && kept.options == other.options &&
        kept.dataSet.has_value() == (otherDataSet != nullptr);
    if (!isSameBlock || otherDataSet == nullptr) {
        return isSameBlock;
    }
    DataSet const& dataSet = station_.dataSets[*kept.dataSet];
    return dataSet.entries == otherDataSet->entries &&
           std::equal(dataSet.members.begin(), dataSet.members.end(), otherDataSet->members.begin(),
                      otherDataSet->members.end(), isSameMember);
}

void StationJoiner::joinSubscribers() {
    SubscriberFinder finder(station_);
    for (KnownName const& known : names_) {
        finder.addName(known.name, station_.controlBlocks[known.controlBlock].protocol,
                       known.controlBlock);
    }
    for (ControlBlock const& block : station_.controlBlocks) {
        for (Subscriber const& subscriber : block.subscribers) {
            if (!ieds_.contains(subscriber.ied)) {
                files_[subscriber.place.file].diagnostics.addOnce(DiagnosticCode::missingIed,
                                                                  subscriber.place, subscriber.ied);
            }
        }
    }
    for (FileContent& file : files_) {
        for (FoundInput const& input : file.inputs) {
            joinInput(input, file, finder);
        }
    }
    if (files_.size() > 1) {
        dropRepeatedSubscribers();
    }
}

void StationJoiner::joinInput(FoundInput const& input, FileContent& content,
                              SubscriberFinder& finder) {
    if (!ieds_.contains(input.block.ied)) {
        content.diagnostics.addOnce(DiagnosticCode::missingIed, input.place, input.block.ied);
        return;
    }
    if (finder.add(input, content.ieds[input.ied], content.budget)) {
        if (content.budget.isSpent()) {
            content.diagnostics.addOnce(DiagnosticCode::memoryLimit, input.place, "ExtRef");
        }
        return;
    }
    // Without a service, it may be the data or control block of a report.
    bool const isNamed = !input.block.name.empty();
    bool const isOfOtherService = std::any_of(files_.begin(), files_.end(), [&](auto const& file) {
        return isNamed && file.otherControlBlocks.contains(keyOf(input.block));
    });
    if (isOfOtherService || (!isNamed && !input.protocol)) {
        return;
    }
    if (content.diagnostics.takes(DiagnosticCode::missingControlBlock)) {
        std::string subject = input.block.ied;
        if (isNamed) {
            subject.append(input.block.ldInst)
                .append(1, '/')
                .append(input.block.node)
                .append(1, '.')
                .append(input.block.name);
        } else {
            subject.append(input.data);
        }
        content.diagnostics.add(DiagnosticCode::missingControlBlock, input.place, subject);
    }
}

void StationJoiner::dropRepeatedSubscribers() {
    for (ControlBlock& block : station_.controlBlocks) {
        NameSet known;
        std::erase_if(block.subscribers, [&](Subscriber const& each) {
            return !known.insert(subscriberKey(each)).second;
        });
    }
}

void StationJoiner::noteUnused() {
    for (FileContent& file : files_) {
        for (FoundAccessPoint const& each : file.accessPoints) {
            if (!ieds_.contains(each.ied)) {
                file.diagnostics.addOnce(DiagnosticCode::missingIed, each.place, each.ied);
            }
        }
        for (FoundAddress const& each : file.addresses) {
            auto const known =
                addresses_.find(addressKey(each.protocol, each.ied, each.ldInst, each.name));
            if (!known->second.isUsed && ieds_.contains(each.ied)) {
                file.diagnostics.add(
                    DiagnosticCode::missingControlBlock, each.place,
                    std::string(each.ied).append(each.ldInst).append(1, '/').append(each.name));
            }
        }
    }
}

}  // namespace TalIec61850Scl::detail
