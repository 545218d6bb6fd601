#include <TalIec61850Parser/store/SvProto.hpp>
#include <utility>

namespace TalIec61850Parser {

Sv const& SvProto::addSv(Sv&& sv) { return *streams.insert(std::move(sv)).first; }

void SvProto::addSv() { addSv(Sv()); }

std::size_t SvProto::getSvCount() const { return streams.size(); }

}  // namespace TalIec61850Parser
