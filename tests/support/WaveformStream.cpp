#include "support/WaveformStream.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"
#include "support/PcapngMaker.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

namespace {

__extension__ typedef __int128 Wide;

constexpr std::int64_t kSecond = 1'000'000'000;

Wide floorDivide(Wide a, Wide b) {
    Wide const whole = a / b;
    return a % b < 0 ? whole - 1 : whole;
}

std::size_t octetsOf(WaveMember member) {
    switch (member) {
        case WaveMember::boolean:
        case WaveMember::int8:
        case WaveMember::int8u:
            return 1;
        case WaveMember::int16:
        case WaveMember::int16u:
            return 2;
        case WaveMember::int24:
        case WaveMember::int24u:
            return 3;
        case WaveMember::int64:
        case WaveMember::float64:
        case WaveMember::timestamp:
            return 8;
        default:
            return 4;
    }
}

/// The largest value that is sent.
double amplitudeOf(WaveMember member) {
    switch (member) {
        case WaveMember::int8:
            return 127;
        case WaveMember::int16:
            return 32'767;
        case WaveMember::int24:
            return 8'388'607;
        case WaveMember::int64:
            return 9e18;
        case WaveMember::int8u:
            return 255;
        case WaveMember::int16u:
            return 65'535;
        case WaveMember::int24u:
            return 16'777'215;
        case WaveMember::int32u:
            return 4'294'967'295;
        case WaveMember::enumerated:
            return 5;
        default:
            return 400'000;
    }
}

bool isUnsigned(WaveMember member) {
    return member == WaveMember::int8u || member == WaveMember::int16u ||
           member == WaveMember::int24u || member == WaveMember::int32u ||
           member == WaveMember::enumerated;
}

/// A UtcTime of a time in nanoseconds; its fraction is cut.
Bytes utcTimeOf(std::int64_t time) {
    auto const fraction = static_cast<std::uint64_t>(time % kSecond) * 16'777'216 / 1'000'000'000;
    return utcTime(static_cast<std::uint32_t>(time / kSecond),
                   static_cast<std::uint32_t>(fraction));
}

/// The time that a UtcTime of that time says, to the nanosecond, rounded as its fraction is.
std::int64_t timeSaid(std::int64_t time) {
    Wide const fraction = Wide{time % kSecond} * 16'777'216 / kSecond;
    return time / kSecond * kSecond + static_cast<std::int64_t>(fraction * kSecond / 16'777'216);
}

/// Adds the low octets of a number, the most significant first.
void appendNumber(Bytes& out, std::uint64_t value, std::size_t octets) {
    for (std::size_t i = octets; i-- > 0;) out.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

std::size_t headOf(std::size_t content) { return content < 128 ? 2 : content < 256 ? 3 : 4; }

}  // namespace

std::vector<WaveMember> repeatedMembers(std::vector<WaveMember> const& members, std::size_t times) {
    std::vector<WaveMember> all;
    for (std::size_t i = 0; i < times; ++i) all.insert(all.end(), members.begin(), members.end());
    return all;
}

WaveformStream::WaveformStream(WaveformSettings const& settings)
    : settings_(settings),
      rate_(settings.rate),
      origin_(std::int64_t{settings.second} * kSecond),
      sinceOrigin_(settings.firstCount),
      number_(settings.firstCount),
      random_(settings.seed) {}

std::int64_t WaveformStream::timeAfter(std::int64_t number, std::uint32_t rate) {
    return static_cast<std::int64_t>(floorDivide(Wide{number} * kSecond, rate));
}

std::int64_t WaveformStream::trueTime() const { return origin_ + timeAfter(sinceOrigin_, rate_); }

std::int64_t WaveformStream::drift() const {
    auto const since = static_cast<double>(trueTime() - std::int64_t{settings_.second} * kSecond);
    return static_cast<std::int64_t>(std::floor(since * settings_.driftPpm * 1e-6));
}

void WaveformStream::fillValues(WaveformRow& row, std::int64_t time, std::uint64_t number) const {
    double const turns =
        static_cast<double>(time % kSecond) / static_cast<double>(kSecond) * settings_.frequency;
    std::size_t channel = 0;
    bool isAfterValue = false;
    for (WaveMember const member : settings_.members) {
        std::size_t const octets = octetsOf(member);
        if (member == WaveMember::quality) {
            // Validity and test, now and then.
            std::uint32_t const word = number % 7 == channel ? 0x803U : 0x2000U;
            appendNumber(row.octets, word, octets);
            if (isAfterValue) row.qualities.push_back(word);
            isAfterValue = false;
            continue;
        }
        if (member == WaveMember::timestamp) {
            append(row.octets, utcTimeOf(time));
            isAfterValue = false;
            continue;
        }
        double const phase = 0.123 + static_cast<double>(channel) / 3.0;
        double const wave = std::sin(2 * std::numbers::pi * (turns + phase));
        std::int64_t value = 0;
        std::uint64_t sent = 0;
        if (member == WaveMember::float32) {
            auto const real = static_cast<float>(wave * 1000);
            value = std::bit_cast<std::int64_t>(static_cast<double>(real));
            sent = std::bit_cast<std::uint32_t>(real);
        } else if (member == WaveMember::float64) {
            value = std::bit_cast<std::int64_t>(wave * 1e5);
            sent = static_cast<std::uint64_t>(value);
        } else if (member == WaveMember::boolean) {
            value = wave > 0 ? 1 : 0;
            sent = wave > 0.5 ? 0xFF : static_cast<std::uint64_t>(value);
        } else {
            double const scaled = isUnsigned(member) ? (wave + 1) / 2 : wave;
            value = static_cast<std::int64_t>(std::floor(scaled * amplitudeOf(member)));
            sent = static_cast<std::uint64_t>(value);
        }
        appendNumber(row.octets, sent, octets);
        row.values.push_back(value);
        isAfterValue = true;
        ++channel;
    }
}

/// The samples of the next frame.
void WaveformStream::makeSamples(bool isLost) {
    for (std::uint32_t i = 0; i < settings_.asdus; ++i) {
        Sample sample;
        sample.number = number_;
        sample.rate = rate_;
        sample.row.smpCnt = static_cast<std::uint32_t>(number_ % wrap());
        sample.row.smpSynch = settings_.smpSynch;
        sample.row.arrivalTime = trueTime() + clock_ + drift();
        sample.row.taken = trueTime();
        sample.row.run = run_;
        sample.row.asdu = i;
        if (!isLost) fillValues(sample.row, trueTime(), allSamples_);
        samples_.push_back(std::move(sample));
        ++number_;
        ++sinceOrigin_;
        ++allSamples_;
    }
}

/// The frame of the last samples.
Bytes WaveformStream::makeFrame(char lan) {
    SvMessage message;
    message.asdus.clear();
    message.asdus.reserve(settings_.asdus);
    std::size_t const first = samples_.size() - settings_.asdus;
    std::size_t content = 0;
    std::vector<std::size_t> places;
    for (std::size_t i = first; i < samples_.size(); ++i) {
        WaveformRow const& row = samples_[i].row;
        Asdu asdu;
        asdu.svID = settings_.svID;
        asdu.smpCnt = Unsigned<2>(row.smpCnt);
        asdu.confRev = Unsigned<4>(confRev_);
        if (settings_.hasRefrTm) asdu.refrTm = utcTimeOf(row.taken);
        asdu.smpSynch = {};
        if (row.smpSynch) asdu.smpSynch = Unsigned<1>(*row.smpSynch);
        if (settings_.smpRate) asdu.smpRate = Unsigned<2>(*settings_.smpRate);
        if (settings_.smpMod) asdu.smpMod = Unsigned<2>(*settings_.smpMod);
        asdu.seqData = row.octets;
        places.push_back(content);
        content += asduElement(asdu).size();
        message.asdus.push_back(std::move(asdu));
    }
    Ethernet ethernet = settings_.ethernet;
    if (settings_.copies == WaveCopies::prp) ethernet = ethernet.withPrp(lan, redundancySequence_);
    if (settings_.copies == WaveCopies::hsr) ethernet = ethernet.withHsr(lan, redundancySequence_);
    // What is before the sequence is as long wherever the sequence is.
    auto const known = sequenceOffsets_.find(content);
    std::size_t const inPdu =
        known != sequenceOffsets_.end()
            ? known->second
            : sequenceOffsets_.emplace(content, sequenceOffset(message)).first->second;
    std::size_t const sequence = payloadOffset(ethernet) + 8 + inPdu;
    for (std::size_t i = 0; i < places.size(); ++i) {
        samples_[first + i].offsetInFrame = sequence + headOf(content) + places[i];
    }
    return svFrame(ethernet, message);
}

/// Captures the frame of the last samples, some nanoseconds later than it should come.
void WaveformStream::capture(std::int64_t extra) {
    std::size_t const first = samples_.size() - settings_.asdus;
    std::int64_t arrival = samples_.back().row.arrivalTime + settings_.delay + extra;
    // What is queued keeps its order.
    if (settings_.jitter > 0) arrival = std::max(arrival, lastArrival_ + 1'000);
    lastArrival_ = arrival;
    for (std::size_t i = first; i < samples_.size(); ++i) {
        samples_[i].isReceived = true;
        samples_[i].capture = captured_.size();
        samples_[i].row.arrival = arrival;
    }
    counts_.received += settings_.asdus;
    captured_.push_back({arrival, makeFrame('A'), file_, isTwice_});
    if (settings_.copies != WaveCopies::none) {
        captured_.push_back({arrival + 2'000, makeFrame('B'), file_, isTwice_});
    }
    ++redundancySequence_;
    isRunEmpty_ = false;
    if (heldBack_ && --heldBack_->left == 0) captureHeldBack();
}

void WaveformStream::captureHeldBack() {
    std::int64_t arrival = captured_.back().time + 20'000;
    for (std::size_t i = 0; i < settings_.asdus; ++i) {
        Sample& sample = samples_[heldBack_->firstSample + i];
        sample.isReceived = true;
        sample.capture = captured_.size();
        sample.row.arrival = arrival;
    }
    for (Bytes const& frame : heldBack_->frames) {
        captured_.push_back({arrival, frame, file_, isTwice_});
        arrival += 2'000;
    }
    counts_.received += settings_.asdus;
    counts_.late += settings_.asdus;
    heldBack_.reset();
}

WaveformStream& WaveformStream::send(std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        makeSamples(false);
        std::int64_t extra = std::exchange(delayOfNext_, 0);
        if (settings_.jitter > 0) {
            extra += static_cast<std::int64_t>(random_()) % settings_.jitter;
        }
        capture(extra);
    }
    return *this;
}

WaveformStream& WaveformStream::lose(std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        makeSamples(true);
        ++redundancySequence_;
    }
    return *this;
}

WaveformStream& WaveformStream::repeatLast() {
    if (captured_.empty() || isRunEmpty_ || heldBack_) return *this;
    Captured again = captured_.back();
    again.time += 10'000;
    captured_.push_back(again);
    counts_.repeated += settings_.asdus;
    return *this;
}

WaveformStream& WaveformStream::sendLate(std::size_t frames, std::size_t lost) {
    if (heldBack_) return send();
    makeSamples(false);
    HeldBack held{frames, samples_.size() - settings_.asdus, {}};
    held.frames.push_back(makeFrame('A'));
    if (settings_.copies != WaveCopies::none) held.frames.push_back(makeFrame('B'));
    ++redundancySequence_;
    heldBack_ = std::move(held);
    lose(lost);
    return send(frames);
}

void WaveformStream::newRun() {
    if (!isRunEmpty_) ++run_;
    isRunEmpty_ = true;
}

WaveformStream& WaveformStream::restartAt(std::uint32_t smpCnt) {
    newRun();
    number_ = smpCnt;
    return *this;
}

WaveformStream& WaveformStream::changeRate(std::uint32_t rate, std::uint32_t smpCnt,
                                           std::optional<std::uint16_t> declared) {
    newRun();
    origin_ = trueTime();
    sinceOrigin_ = 0;
    rate_ = rate;
    number_ = smpCnt;
    settings_.smpRate = declared;
    return *this;
}

WaveformStream& WaveformStream::stepClock(std::int64_t nanoseconds) {
    newRun();
    clock_ += nanoseconds;
    lastArrival_ = 0;
    return *this;
}

WaveformStream& WaveformStream::delayNext(std::int64_t nanoseconds) {
    delayOfNext_ = nanoseconds;
    return *this;
}

WaveformStream& WaveformStream::synchronize(std::optional<std::uint8_t> smpSynch) {
    settings_.smpSynch = smpSynch;
    return *this;
}

WaveformStream& WaveformStream::revise(std::uint32_t confRev) {
    confRev_ = confRev;
    return *this;
}

WaveformStream& WaveformStream::nextFile() {
    ++file_;
    return *this;
}

WaveformStream& WaveformStream::captureTwice(bool isOn) {
    isTwice_ = isOn;
    return *this;
}

std::vector<Bytes> WaveformStream::captures() const {
    std::size_t files = 1;
    for (Captured const& one : captured_) {
        files = std::max(files, one.file + (one.isTwice ? 2 : 1));
    }
    std::vector<Bytes> all;
    for (std::size_t file = 0; file < files; ++file) {
        CaptureBuilder classic(CaptureVariant::nanoLittle);
        PcapngMaker next;
        next.section();
        next.interface(1, 0, next.timeOptions(9));
        for (Captured const& one : captured_) {
            if (one.file != file && !(one.isTwice && one.file + 1 == file)) continue;
            auto const time = static_cast<std::uint64_t>(one.time);
            if (settings_.isPcapng) {
                PcapngMaker::Packet packet;
                packet.time = time;
                packet.frame = one.frame;
                next.packet(packet);
            } else {
                classic.add(static_cast<std::uint32_t>(time / 1'000'000'000),
                            static_cast<std::uint32_t>(time % 1'000'000'000), one.frame);
            }
        }
        all.push_back(settings_.isPcapng ? next.bytes() : classic.bytes());
    }
    return all;
}

WaveformCounts WaveformStream::counts() const {
    WaveformCounts counts = counts_;
    std::vector<WaveformRow> const all = rows(true);
    counts.lost = static_cast<std::uint64_t>(
        std::count_if(all.begin(), all.end(), [](auto const& row) { return row.isMissing; }));
    counts.runs = all.empty() ? 0 : all.back().run + 1;
    return counts;
}

std::int64_t WaveformStream::exactTime(Sample const& sample,
                                       std::optional<std::int64_t> fixedSecond) const {
    if (settings_.hasRefrTm && sample.isReceived) return timeSaid(sample.row.taken);
    bool const isCounted = settings_.wrap.value_or(sample.rate) == sample.rate;
    if (settings_.hasRefrTm || !isCounted || !fixedSecond || sample.row.smpSynch != 2) {
        return WaveformRow::noTime;
    }
    return *fixedSecond + timeAfter(sample.number, sample.rate);
}

std::vector<WaveformRow> WaveformStream::rows(bool withMissing) const {
    // Where frames are in their files: each is after the ones before.
    std::vector<std::uint64_t> frameOffsets(captured_.size());
    std::vector<std::uint64_t> ends;
    for (std::size_t i = 0; i < captured_.size(); ++i) {
        Captured const& one = captured_[i];
        std::uint64_t const size = one.frame.size();
        for (std::size_t file = one.file; file <= one.file + (one.isTwice ? 1 : 0); ++file) {
            while (ends.size() <= file) {
                // Section and interface, with a unit of time of nine and its end, in
                // next-generation files.
                ends.push_back(settings_.isPcapng ? 28 + 32 : 24);
            }
            std::uint64_t const head = settings_.isPcapng ? 28 : 16;
            std::uint64_t const tail = settings_.isPcapng ? (4 - size % 4) % 4 + 4 : 0;
            if (file == one.file) frameOffsets[i] = ends[file] + head;
            ends[file] += head + size + tail;
        }
    }

    std::vector<WaveformRow> rows;
    std::size_t run = static_cast<std::size_t>(-1);
    std::optional<std::int64_t> fixedSecond;
    std::vector<WaveformRow> missing;
    std::optional<std::uint8_t> synchBefore;
    for (Sample const& sample : samples_) {
        WaveformRow row = sample.row;
        if (row.run != run) {
            run = row.run;
            fixedSecond.reset();
            missing.clear();
            synchBefore.reset();
            // Nothing is known to be missing before the first that comes.
        }
        bool const isFirst = rows.empty() || rows.back().run != run;
        if (!sample.isReceived) {
            if (isFirst) continue;
            Sample lost = sample;
            lost.row.smpSynch = synchBefore;
            row.smpSynch = synchBefore;
            row.time = exactTime(lost, fixedSecond);
            row.isMissing = true;
            row.arrival = WaveformRow::noTime;
            row.values.assign(rows.back().values.size(), 0);
            row.qualities.assign(rows.back().qualities.size(), 0);
            row.octets.assign(rows.back().octets.size(), 0);
            row.file = rows.back().file;
            row.asdu = rows.back().asdu;
            missing.push_back(std::move(row));
            continue;
        }
        if (withMissing) rows.insert(rows.end(), missing.begin(), missing.end());
        missing.clear();
        if (row.smpSynch == 2 && !fixedSecond && !settings_.hasRefrTm) {
            std::int64_t const inSecond = sample.number % sample.rate;
            Wide const scaled =
                (Wide{row.arrival} + kSecond / 10) * sample.rate - Wide{inSecond} * kSecond;
            fixedSecond =
                static_cast<std::int64_t>(floorDivide(scaled, Wide{kSecond} * sample.rate)) *
                    kSecond -
                sample.number / sample.rate * kSecond;
        }
        synchBefore = row.smpSynch;
        row.time = exactTime(sample, fixedSecond);
        row.file = captured_[sample.capture].file;
        row.fileOffset = frameOffsets[sample.capture] + sample.offsetInFrame;
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace TalTest
