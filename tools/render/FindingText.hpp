#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/names/MessageNames.hpp"
#include "tools/names/StreamNames.hpp"
#include "tools/output/Cell.hpp"

namespace TalIec61850Tools {

/// Findings in words.
class FindingText {
public:
    /// @param index   of the findings; must outlive this
    /// @param names   of members and channels; must outlive this
    /// @param nameOf  of a capture by its number
    FindingText(TalIec61850Analysis::TrafficIndex const& index, StreamNames& names,
                std::function<std::string_view(std::uint32_t file)> nameOf)
        : index_(index),
          names_(names),
          nameOf_(std::move(nameOf)),
          messages_(index, names, nameOf_) {}

    /// One sentence, without the name of the stream. Names in it are as they are in the frames.
    [[nodiscard]] std::string sentence(TalIec61850Analysis::Finding const& finding);

    /// The name of the member or channel that a finding is about, as it is described; empty where
    /// it has none.
    [[nodiscard]] std::string nameOf(TalIec61850Analysis::Finding const& finding);

private:
    [[nodiscard]] std::string what(TalIec61850Analysis::Finding const& finding);
    // Each tells some kinds of findings, and is empty for all others.
    [[nodiscard]] std::string ofCounters(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string ofContent(TalIec61850Analysis::Finding const& finding);
    [[nodiscard]] std::string ofCopies(TalIec61850Analysis::Finding const& finding) const;

    [[nodiscard]] std::string repeatedText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string lateText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string gapText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string silentText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string messageText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string restartText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::uint32_t stNumOf(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string wayText(TalIec61850Analysis::Finding const& finding,
                                      bool isOther) const;
    [[nodiscard]] std::string copyMissingText(TalIec61850Analysis::Finding const& finding) const;
    [[nodiscard]] std::string qualityChangeText(TalIec61850Analysis::Finding const& finding);
    [[nodiscard]] std::string channelText(TalIec61850Analysis::Finding const& finding);
    [[nodiscard]] std::vector<std::string> const& channelNames(std::size_t stream);

    [[nodiscard]] std::string nameText(TalIec61850Analysis::Finding const& finding);

    TalIec61850Analysis::TrafficIndex const& index_;
    StreamNames& names_;
    StreamNames::NameOfFile nameOf_;
    MessageNames messages_;
    /// By stream: the names of its channels; empty where none are known.
    std::map<std::size_t, std::vector<std::string>> channels_;
};

/// A value that was expected or found, for other programs: a number, a text, or nothing.
/// @param value  `expected` or `found` of the finding
[[nodiscard]] Cell valueCell(TalIec61850Analysis::Finding const& finding,
                             TalIec61850Analysis::FindingValue const& value);

}  // namespace TalIec61850Tools
