#include <TalIec61850Parser/store/GooseProto.hpp>
#include <utility>

namespace TalIec61850Parser {

Goose const& GooseProto::addGoose(Goose&& goose) { return *streams.insert(std::move(goose)).first; }

void GooseProto::addGoose() { addGoose(Goose()); }

std::size_t GooseProto::getGooseCount() const { return streams.size(); }

}  // namespace TalIec61850Parser
