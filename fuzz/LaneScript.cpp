#include "fuzz/LaneScript.hpp"

#include "fuzz/FuzzInput.hpp"
#include "lanes/LaneFrames.hpp"
#include "lanes/StoreActions.hpp"
#include "support/CaptureFile.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

constexpr std::size_t kMaxFrames = 4;
constexpr std::size_t kMaxFrameSize = 2000;
constexpr std::size_t kMaxRecords = 1300;
constexpr std::size_t kMaxRecordsOfFrames = 32;
constexpr std::size_t kRecordsPerProgress = 1000;
constexpr std::size_t kMaxRounds = 2;
constexpr std::size_t kCounted = 4;

TalIec61850Parser::Filter const& filterOf(std::size_t choice) {
    static auto const filters = laneFilters();
    return filters[choice % filters.size()].filter;
}

void stopAtSecondCall(WatchedStore& store, int call) { store.stop = call == 1; }

void changeFilter(WatchedStore& store, int call) {
    store.filter = filterOf(static_cast<std::size_t>(call) + 1);
}

/// None, one of those that there are, or any of them in each call.
ProgressAction actionOf(std::uint8_t choice) {
    auto const& actions = storeActions();
    if (choice == 0) return {};
    if (choice == kStopAction) return stopAtSecondCall;
    if (choice == kFilterAction) return changeFilter;
    return choice <= actions.size() ? actions[choice - 1U].act : randomActions(choice);
}

/// A capture on which the steps are taken.
class Script {
public:
    Script(CaptureVariant variant, std::vector<Bytes> frames)
        : capture_(variant), frames_(std::move(frames)) {}

    void take(FuzzInput& input) {
        std::uint8_t const octet = input.octet();
        std::size_t const choice = octet >> kLaneStepBits;
        Bytes& frame = frames_[choice % frames_.size()];
        switch (static_cast<LaneStep>(octet % (1U << kLaneStepBits))) {
            case kAdd:
                add(frame);
                break;
            case kAddRound:
                for (std::size_t round = 0; round <= choice % kMaxRounds; ++round)
                    for (Bytes const& each : frames_) add(each);
                break;
            case kAddChanged: {
                std::size_t const position = input.number();
                add(changed(frame, position, input.octet()));
                break;
            }
            case kChange: {
                std::size_t const position = input.number();
                frame = changed(frame, position, input.octet());
                break;
            }
            case kAddTail: {
                std::size_t const behind = input.octet();
                Bytes copy = frame;
                if (behind < copy.size()) copy[copy.size() - 1 - behind] = input.octet();
                add(copy);
                break;
            }
            case kAddResized: {
                Bytes copy = frame;
                std::size_t const size = input.number() % kMaxFrameSize;
                copy.resize(size, input.octet());
                add(copy);
                break;
            }
            case kAddCounted: {
                std::size_t const position = input.number();
                for (std::size_t i = 0; i < kCounted; ++i) {
                    frame = changed(frame, position, 1);
                    add(frame);
                }
                break;
            }
            case kPassToProgress:
                if (choice % 8 == 0) passToProgress();
                break;
        }
    }

    [[nodiscard]] bool isFull() const {
        return records_ >= kMaxRecords || numFrames_ >= kMaxRecordsOfFrames;
    }
    [[nodiscard]] Bytes const& capture() const { return capture_.bytes(); }
    [[nodiscard]] std::size_t numFrames() const { return numFrames_; }

private:
    void add(Bytes const& frame) {
        ++numFrames_;
        addRecord(frame);
    }
    void addRecord(Bytes const& frame) {
        ++records_;
        capture_.add(records_, records_ * 1000, frame);
    }
    void passToProgress() {
        std::size_t const count = kRecordsPerProgress - records_ % kRecordsPerProgress;
        capture_.addRaw(Bytes(count * recordHeaderSize));
        records_ += static_cast<std::uint32_t>(count);
    }
    static Bytes changed(Bytes frame, std::size_t position, std::uint8_t added) {
        if (frame.empty()) return frame;
        std::uint8_t& octet = frame[position % frame.size()];
        octet = static_cast<std::uint8_t>(octet + added);
        return frame;
    }

    CaptureBuilder capture_;
    std::vector<Bytes> frames_;
    std::uint32_t records_ = 0;
    std::size_t numFrames_ = 0;
};

}  // namespace

LaneCase laneCase(std::span<std::uint8_t const> octets) {
    FuzzInput input(octets);
    CaptureVariant const variant = captureVariants[input.octet() % captureVariants.size()];
    LaneSettings settings;
    settings.progress = actionOf(input.octet());
    settings.filter = filterOf(input.octet());
    std::vector<Bytes> frames(1 + input.octet() % kMaxFrames);
    for (Bytes& frame : frames) frame = input.octets(input.number() % kMaxFrameSize);
    Script script(variant, std::move(frames));
    while (!input.isEmpty() && !script.isFull()) script.take(input);
    return {script.capture(), settings, script.numFrames()};
}

Bytes laneInput(std::uint8_t variant, std::uint8_t action, std::uint8_t filter,
                std::vector<Bytes> const& frames) {
    Bytes input = {variant, action, filter, static_cast<std::uint8_t>(frames.size() - 1)};
    for (Bytes const& frame : frames) {
        append(input, bigEndian(frame.size(), 2));
        append(input, frame);
    }
    return input;
}

}  // namespace TalFuzz
