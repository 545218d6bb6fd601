#pragma once

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <TalIec61850Parser/store/GooseProto.hpp>
#include <TalIec61850Parser/store/SvProto.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// What the identities of GOOSE and SV streams have in common, whatever members they take in.

namespace TalTest {

using Text = std::optional<std::string>;

/// One member of a stream's identity, three ways to change it, and where it counts.
template <typename Stream>
struct IdentityMember {
    char const* name;
    std::function<void(Stream&)> change;
    std::function<void(Stream&)> unset;
    std::function<void(Stream&)> zero;
    bool inHash;
    bool inEquality;
};

inline TalIec61850Parser::Goose const& addStream(TalIec61850Parser::GooseProto& proto,
                                                 TalIec61850Parser::Goose const& goose) {
    return proto.addGoose(TalIec61850Parser::Goose(goose));
}

inline TalIec61850Parser::Sv const& addStream(TalIec61850Parser::SvProto& proto,
                                              TalIec61850Parser::Sv const& sv) {
    return proto.addSv(TalIec61850Parser::Sv(sv));
}

inline std::size_t countOf(TalIec61850Parser::GooseProto const& proto) {
    return proto.getGooseCount();
}

inline std::size_t countOf(TalIec61850Parser::SvProto const& proto) { return proto.getSvCount(); }

template <typename Stream>
using ProtoOf = std::conditional_t<std::is_same_v<Stream, TalIec61850Parser::Goose>,
                                   TalIec61850Parser::GooseProto, TalIec61850Parser::SvProto>;

/// How many streams these records are.
template <typename Stream>
std::size_t streamsOf(std::vector<Stream> const& records) {
    ProtoOf<Stream> proto;
    for (Stream const& record : records) addStream(proto, record);
    return countOf(proto);
}

/// What a text adds to a hash.
inline std::size_t termOf(Text const& text) { return text ? std::hash<std::string>{}(*text) : 0; }

/// What a VLAN adds to a hash.
inline std::size_t termOf(std::optional<TalIec61850Parser::VlanInfo> const& vlan) {
    if (!vlan) return 0;
    return std::size_t{vlan->priority.value_or(0)} ^ vlan->dei.value_or(0) ^
           vlan->vlanId.value_or(0);
}

/// The rules that tell the streams of one protocol apart, as laid down, held against the library.
/// `Part` is what equality compares.
template <typename Stream, typename Part>
class IdentityRules {
public:
    using Members = std::vector<IdentityMember<Stream>>;
    using Hash = typename decltype(ProtoOf<Stream>::streams)::hasher;
    using Equal = typename decltype(ProtoOf<Stream>::streams)::key_equal;

    /// @param record  a record with every member set
    IdentityRules(Stream record, Members members, std::size_t (*hashOf)(Stream const&),
                  Part (*comparedPart)(Stream const&))
        : record_(std::move(record)),
          members_(std::move(members)),
          hashOf_(hashOf),
          comparedPart_(comparedPart) {}

    void expectEachMemberWhereItCounts() const {
        for (auto const& member : members_) {
            SCOPED_TRACE(member.name);
            Stream const other = changed(member.change);
            EXPECT_EQ(Hash{}(record_) != Hash{}(other), member.inHash);
            EXPECT_EQ(!Equal{}(record_, other), member.inEquality);
            EXPECT_EQ(!Equal{}(other, record_), member.inEquality);
            EXPECT_EQ(streamsOf<Stream>({record_, other}),
                      member.inHash || member.inEquality ? 2U : 1U);
        }
    }

    void expectUnsetToEqualZero() const {
        for (auto const& member : members_) {
            SCOPED_TRACE(member.name);
            EXPECT_TRUE(Equal{}(changed(member.unset), changed(member.zero)));
            EXPECT_TRUE(Equal{}(changed(member.zero), changed(member.unset)));
        }
    }

    /// Only for the members of these names are unset and zero two streams.
    void expectUnsetAndZeroApart(std::set<std::string> const& names) const {
        for (auto const& member : members_) {
            SCOPED_TRACE(member.name);
            EXPECT_EQ(streamsOf<Stream>({changed(member.unset), changed(member.zero)}),
                      names.contains(member.name) ? 2U : 1U);
        }
    }

    void expectHashOfEveryChange() const {
        EXPECT_EQ(Hash{}(record_), hashOf_(record_));
        for (auto const& member : members_) {
            SCOPED_TRACE(member.name);
            for (auto const& change : {member.change, member.unset, member.zero}) {
                EXPECT_EQ(Hash{}(changed(change)), hashOf_(changed(change)));
            }
        }
    }

    /// The record with two members exchanged has the same hash, and is another stream.
    template <typename Member>
    void expectTwoStreamsOfOneHash(Member Stream::*one, Member Stream::*other) const {
        Stream swapped = record_;
        std::swap(swapped.*one, swapped.*other);
        EXPECT_EQ(Hash{}(record_), Hash{}(swapped));
        EXPECT_EQ(streamsOf<Stream>({record_, swapped}), 2U);
    }

    /// Two texts that differ after a zero octet, or by it, are two streams.
    void expectTextToCountOctetForOctet(Text Stream::*text) const {
        Stream a;
        Stream b;
        a.*text = std::string("ID\0a", 4);
        for (std::string const& other : {std::string("ID\0b", 4), std::string("ID")}) {
            b.*text = other;
            EXPECT_FALSE(Equal{}(a, b));
            EXPECT_EQ(streamsOf<Stream>({a, b}), 2U);
        }
    }

    /// A property of any two records.
    void checkEquality(Stream const& a, Stream const& b) const {
        RC_ASSERT(Equal{}(a, a));
        RC_ASSERT(Equal{}(a, b) == Equal{}(b, a));
        RC_ASSERT(Equal{}(a, b) == (comparedPart_(a) == comparedPart_(b)));
        RC_ASSERT(Hash{}(a) == hashOf_(a));
    }

    /// A property: records are one stream when hash and compared part are the same.
    /// @param any    generates a record
    /// @param mixIn  each takes some members of its second argument over into its first
    void checkStreams(Stream (*any)(),
                      std::vector<std::function<void(Stream&, Stream const&)>> const& mixIn) const {
        ProtoOf<Stream> proto;
        std::set<std::pair<std::size_t, Part>> model;
        // Most of them repeat three records but for a few members.
        std::vector<Stream> const seeds{any(), any(), any()};
        int const count = *rc::gen::inRange(0, 40);
        for (int i = 0; i < count; ++i) {
            Stream stream = seeds[*rc::gen::inRange<std::size_t>(0, 3)];
            Stream const other = any();
            // The index after the last means no change.
            std::size_t const mix = *rc::gen::inRange<std::size_t>(0, mixIn.size() + 1);
            if (mix < mixIn.size()) mixIn[mix](stream, other);
            bool const isNew = model.emplace(hashOf_(stream), comparedPart_(stream)).second;
            std::size_t const before = countOf(proto);
            Stream const& stored = addStream(proto, stream);
            RC_ASSERT((countOf(proto) > before) == isNew);
            RC_ASSERT(Equal{}(stored, stream) && Hash{}(stored) == Hash{}(stream));
            RC_ASSERT(countOf(proto) == model.size());
        }
    }

private:
    Stream changed(std::function<void(Stream&)> const& change) const {
        Stream record = record_;
        change(record);
        return record;
    }

    Stream record_;
    Members members_;
    std::size_t (*hashOf_)(Stream const&);
    Part (*comparedPart_)(Stream const&);
};

// Few values for each member, so that generated streams meet.

inline Text anyText() {
    return *rc::gen::element<Text>(std::nullopt, std::string(), std::string("a"));
}

/// -1 means a member that is not set.
inline int anyNumber() { return *rc::gen::element(-1, 0, 1, 2); }

template <typename Number>
void setAny(std::optional<Number>& member) {
    int const value = anyNumber();
    member = value < 0 ? std::nullopt : std::optional(static_cast<Number>(value));
}

inline std::optional<TalIec61850Parser::VlanInfo> anyVlan() {
    if (anyNumber() <= 0) return std::nullopt;
    TalIec61850Parser::VlanInfo vlan;
    setAny(vlan.priority);
    setAny(vlan.dei);
    setAny(vlan.vlanId);
    return vlan;
}

}  // namespace TalTest
