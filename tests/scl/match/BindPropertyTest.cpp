// Random data sets, and messages made of their member lists.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Scl/match/MessageMake.hpp>
#include <algorithm>
#include <utility>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::BindPropertyTest {
namespace {

using namespace TalIec61850Scl;
using TalIec61850Analysis::viewGoose;
using Path = std::vector<std::uint32_t>;

constexpr std::size_t kMostDepth = 4;

std::vector<BasicType> const kTypes = {
    BasicType::boolean,   BasicType::int8,      BasicType::int128,        BasicType::int8u,
    BasicType::int32u,    BasicType::float32,   BasicType::float64,       BasicType::enumerated,
    BasicType::dbpos,     BasicType::tcmd,      BasicType::check,         BasicType::quality,
    BasicType::timestamp, BasicType::entryTime, BasicType::visibleString, BasicType::octetString,
    BasicType::bitString, BasicType::currency,  BasicType::unicodeString};

/// A value of a type, as IEC 61850-8-1 encodes it.
Bytes valueOf(BasicType type) {
    auto const any = [](int most) { return *rc::gen::inRange(0, most); };
    switch (type) {
        case BasicType::boolean:
            return dataBoolean(any(2) == 1);
        case BasicType::int8:
        case BasicType::enumerated:
            return dataInteger(any(256) - 128);
        case BasicType::int128:
            return ber(0x85, bigEndian(1, 12));
        case BasicType::int8u:
            return dataUnsigned(static_cast<std::uint64_t>(any(256)));
        case BasicType::int32u:
            return dataUnsigned(static_cast<std::uint64_t>(any(100'000)));
        case BasicType::float32:
            return dataFloat(static_cast<float>(any(1000)));
        case BasicType::float64:
            return dataDouble(any(1000));
        case BasicType::dbpos:
        case BasicType::tcmd:
        case BasicType::check:
            return dataBitString({static_cast<std::uint8_t>(any(4) << 6)}, 6);
        case BasicType::quality:
            return dataQuality(static_cast<std::uint16_t>(any(2) << 14));
        case BasicType::bitString:
            return dataBitString(Bytes(static_cast<std::size_t>(any(4)), 0xA5));
        case BasicType::timestamp:
            return dataUtcTime(kDescribedStart + static_cast<std::uint32_t>(any(100)));
        case BasicType::entryTime:
            return dataBinaryTime(1000, 5);
        case BasicType::octetString:
            return dataOctetString(Bytes(static_cast<std::size_t>(any(20)), 0x11));
        case BasicType::unicodeString:
            return any(2) == 1 ? dataMmsString("name") : dataVisibleString("name");
        default:
            return dataVisibleString("text");
    }
}

/// Adds what is at a path: a value, or a structure of some more.
void addAny(DataSet& dataSet, Path const& path) {
    bool const isStructure = path.size() < kMostDepth && *rc::gen::inRange(0, 3) == 0;
    if (!isStructure) {
        dataSet.members.push_back(memberOf(path, *rc::gen::elementOf(kTypes),
                                           "name" + std::to_string(dataSet.members.size())));
        return;
    }
    auto const inside = *rc::gen::inRange<std::uint32_t>(1, 4);
    for (std::uint32_t i = 0; i < inside; ++i) {
        Path deeper = path;
        deeper.push_back(i);
        addAny(dataSet, deeper);
    }
}

DataSet anyDataSet() {
    DataSet dataSet;
    dataSet.entries = *rc::gen::inRange<std::uint32_t>(1, 9);
    for (std::uint32_t entry = 0; entry < dataSet.entries; ++entry) {
        addAny(dataSet, {entry});
    }
    return dataSet;
}

/// The values of members that share the first steps of their paths, one element for each next step.
std::vector<Bytes> elementsOf(DataSet const& dataSet, std::vector<Bytes> const& values,
                              std::size_t first, std::size_t end, std::size_t depth) {
    std::vector<Bytes> elements;
    while (first < end) {
        Path const& path = dataSet.members[first].path;
        std::size_t next = first + 1;
        while (next < end && dataSet.members[next].path[depth] == path[depth]) {
            ++next;
        }
        if (path.size() == depth + 1) {
            elements.push_back(values[first]);
        } else {
            Bytes inside;
            for (Bytes const& element : elementsOf(dataSet, values, first, next, depth + 1)) {
                append(inside, element);
            }
            elements.push_back(ber(0xA2, inside));
        }
        first = next;
    }
    return elements;
}

/// A message of a data set with these values, one for each member.
GooseMessage messageOf(DataSet const& dataSet, std::vector<Bytes> const& values) {
    GooseMessage message;
    message.setData(elementsOf(dataSet, values, 0, values.size(), 0));
    return message;
}

MemberBinding bindMessage(DataSet const& dataSet, GooseMessage const& message) {
    Bytes const frame = gooseFrame(Ethernet(), message);
    return bindMembers(dataSet, viewGoose(frame).allData.value());
}

std::vector<Bytes> anyValues(DataSet const& dataSet) {
    std::vector<Bytes> values;
    for (DataSetMember const& member : dataSet.members) {
        values.push_back(valueOf(member.type));
    }
    return values;
}

RC_GTEST_PROP(BindProperty, BindsAMessageMadeOfTheMemberList, ()) {
    DataSet const dataSet = anyDataSet();
    MemberBinding const binding = bindMessage(dataSet, messageOf(dataSet, anyValues(dataSet)));
    RC_ASSERT(binding.bound == dataSet.members.size());
    RC_ASSERT(binding.end == BindingEnd::none);
    RC_ASSERT(binding.endPath.empty());
    for (DataSetMember const& member : dataSet.members) {
        DataSetMember const* const found = binding.memberAt(dataSet, member.path);
        RC_ASSERT(found != nullptr);
        bool const isRight = found->name == member.name;
        RC_ASSERT(isRight);
    }
}

RC_GTEST_PROP(BindProperty, EndsWhereOneTagIsAnother, ()) {
    DataSet const dataSet = anyDataSet();
    auto values = anyValues(dataSet);
    auto const number = *rc::gen::inRange<std::size_t>(0, values.size());
    // Tags that no type has, and those of a structure.
    values[number] = *rc::gen::elementOf(
        std::vector<Bytes>{dataBcd(1), dataBooleanArray({0x80}), dataObjectId({1}),
                           dataStructure({values[number]}), ber(0x99, {0x00})});
    MemberBinding const binding = bindMessage(dataSet, messageOf(dataSet, values));
    RC_ASSERT(binding.bound == number);
    RC_ASSERT(binding.end == BindingEnd::otherType);
    RC_ASSERT(binding.endPath == dataSet.members[number].path);
    RC_ASSERT(binding.found.has_value());
    for (std::size_t i = 0; i < dataSet.members.size(); ++i) {
        bool const isNamed = binding.memberAt(dataSet, dataSet.members[i].path) != nullptr;
        RC_ASSERT(isNamed == (i < number));
    }
}

RC_GTEST_PROP(BindProperty, EndsAtTheFirstValueOfAnotherType, ()) {
    DataSet const dataSet = anyDataSet();
    auto values = anyValues(dataSet);
    auto const number = *rc::gen::inRange<std::size_t>(0, values.size());
    // Whatever tag, or the like: `fits` says whether that is another type.
    values[number] = valueOf(*rc::gen::elementOf(kTypes));
    TalIec61850Analysis::Elements const element(values[number]);
    bool const isSame =
        fits(dataSet.members[number].type, TalIec61850Analysis::viewData(*element.begin()));
    MemberBinding const binding = bindMessage(dataSet, messageOf(dataSet, values));
    RC_ASSERT(binding.bound == (isSame ? dataSet.members.size() : number));
}

RC_GTEST_PROP(BindProperty, EndsWhereAValueIsLeftOutOrAdded, ()) {
    DataSet dataSet = anyDataSet();
    auto const values = anyValues(dataSet);
    GooseMessage const message = messageOf(dataSet, values);
    DataSet shorter = dataSet;
    shorter.members.pop_back();
    MemberBinding const more = bindMessage(shorter, message);
    RC_ASSERT(more.bound == shorter.members.size());
    RC_ASSERT(more.end == BindingEnd::moreValues);
    dataSet.members.push_back(memberOf({dataSet.entries}, BasicType::boolean));
    MemberBinding const fewer = bindMessage(dataSet, message);
    RC_ASSERT(fewer.bound == values.size());
    RC_ASSERT(fewer.end == BindingEnd::fewerValues);
    RC_ASSERT(fewer.endPath == Path{dataSet.entries});
}

RC_GTEST_PROP(BindProperty, IsTheSameForMessagesOfOneMake, ()) {
    DataSet const dataSet = anyDataSet();
    GooseMessage const message = messageOf(dataSet, anyValues(dataSet));
    GooseMessage other = messageOf(dataSet, anyValues(dataSet));
    auto const place = *rc::gen::inRange<std::size_t>(0, other.allData->size());
    if (*rc::gen::arbitrary<bool>()) {
        (*other.allData)[place] = *rc::gen::arbitrary<std::uint8_t>();
    }
    if (TalIec61850Scl::detail::isSameMake(*message.allData, *other.allData)) {
        MemberBinding const one = bindMessage(dataSet, message);
        MemberBinding const two = bindMessage(dataSet, other);
        RC_ASSERT(one.bound == two.bound);
        RC_ASSERT(one.end == two.end);
        RC_ASSERT(one.endPath == two.endPath);
    }
}

RC_GTEST_PROP(BindProperty, TakesWhateverOctets, ()) {
    DataSet const dataSet = anyDataSet();
    GooseMessage message = messageOf(dataSet, anyValues(dataSet));
    Bytes data = *message.allData;
    auto const place = *rc::gen::inRange<std::size_t>(0, data.size());
    data[place] = *rc::gen::arbitrary<std::uint8_t>();
    message.allData = data;
    MemberBinding const binding = bindMessage(dataSet, message);
    RC_ASSERT(binding.bound <= dataSet.members.size());
    bool const isWhole = binding.endPath.empty() && binding.bound == dataSet.members.size();
    RC_ASSERT(isWhole == (binding.end == BindingEnd::none));
    for (DataSetMember const& member : dataSet.members) {
        auto const* const found = binding.memberAt(dataSet, member.path);
        bool const isRight = found == nullptr || found->path == member.path;
        RC_ASSERT(isRight);
    }
}

}  // namespace
}  // namespace TalTest::BindPropertyTest
