#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/render/PictureNames.hpp"
#include "tools/report/LanePicture.hpp"

namespace TalIec61850Tools {

/// The GOOSE streams that a page draws.
class StatesSection {
public:
    /// @param index, names  must outlive the section
    /// @param mostOctets    of all lanes
    StatesSection(TalIec61850Analysis::TrafficIndex const& index, PictureNames const& names,
                  LanePictureWish const& wish, std::size_t mostOctets)
        : index_(index), names_(names), wish_(wish), mostOctets_(mostOctets) {}

    /// Draws a stream, unless there is no room for it.
    /// @param stream  its number in the index
    /// @throws std::system_error  a capture cannot be read
    void add(std::size_t stream);

    /// What is not drawn, a sentence each.
    /// @param streams  how many there are
    [[nodiscard]] std::vector<std::string> absent(std::size_t streams) const;
    /// For the script.
    [[nodiscard]] nlohmann::ordered_json const& json() const { return json_; }

private:
    TalIec61850Analysis::TrafficIndex const& index_;
    PictureNames const& names_;
    LanePictureWish wish_;
    std::size_t mostOctets_;
    nlohmann::ordered_json json_ = nlohmann::ordered_json::array();
    std::size_t octets_ = 0;
    std::size_t leftOut_ = 0;
    bool areJoined_ = false;
};

}  // namespace TalIec61850Tools
