#pragma once

#include <TalIec61850Scl/match/BindMembers.hpp>
#include <TalIec61850Scl/model/DataSet.hpp>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TalIec61850Tools {

/// The names that the values of one GOOSE message have by a description, which must outlive them.
class MemberNames {
public:
    /// No value has a name.
    MemberNames() = default;
    /// @param dataSet  must outlive the names
    /// @param binding  of it, not null
    MemberNames(TalIec61850Scl::DataSet const& dataSet,
                std::shared_ptr<TalIec61850Scl::MemberBinding const> binding)
        : dataSet_(&dataSet), binding_(std::move(binding)) {}

    /// What is described at a place of the message.
    /// @param path  by index from 0, the outermost first
    /// @return null where the value has no name
    [[nodiscard]] TalIec61850Scl::DataSetMember const* at(
        std::span<std::uint32_t const> path) const {
        return dataSet_ == nullptr ? nullptr : binding_->memberAt(*dataSet_, path);
    }

    /// The reference of a value in its IED: LD0/PTRC1.Op.general. Empty where it has none.
    [[nodiscard]] std::string_view nameAt(std::span<std::uint32_t const> path) const {
        auto const* const member = at(path);
        return member == nullptr ? std::string_view() : std::string_view(member->name);
    }

    /// The same with the IED in front: IED1LD0/PTRC1.Op.general.
    [[nodiscard]] std::string fullNameAt(std::span<std::uint32_t const> path) const {
        std::string_view const name = nameAt(path);
        return name.empty() ? std::string() : dataSet_->ied + std::string(name);
    }

    /// Whether a value is one that patterns ask for, in which * is any text and ? any character: by
    /// its name, with its IED, without it, or without the logical device too.
    [[nodiscard]] bool meet(std::vector<std::string> const& patterns,
                            std::span<std::uint32_t const> path) const;

private:
    TalIec61850Scl::DataSet const* dataSet_ = nullptr;
    std::shared_ptr<TalIec61850Scl::MemberBinding const> binding_;
};

}  // namespace TalIec61850Tools
