// Prints every GOOSE packet of a classic capture, with its counters at full width and the values of
// its data set.
//
//   decode-goose FILE

#include <TalIec61850Analysis/TalIec61850Analysis.hpp>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace {

using namespace TalIec61850Analysis;

/// Prints what a value holds; texts of a frame may be anything, so that they are not printed.
struct PrintContent {
    void operator()(bool flag) const { std::cout << (flag ? "true" : "false"); }
    void operator()(std::int64_t number) const { std::cout << number; }
    void operator()(std::uint64_t number) const { std::cout << number; }
    void operator()(float number) const { std::cout << number; }
    void operator()(double number) const { std::cout << number; }
    void operator()(BitStringView const& bits) const {
        for (std::size_t i = 0; i < bits.size(); ++i) {
            std::cout << bits[i];
        }
    }
    void operator()(UtcTime const& time) const { std::cout << time.seconds << "s"; }
    void operator()(BinaryTime const& time) const { std::cout << time.milliseconds << "ms"; }
    void operator()(std::string_view text) const { std::cout << text.size() << " characters"; }
    void operator()(Octets octets) const { std::cout << octets.size() << " octets"; }
    void operator()(ObjectIdView const& /*id*/) const { std::cout << "an identifier"; }
    void operator()(DataViews const& members) const {
        std::cout << "{";
        for (DataView const& member : members) {
            std::cout << " ";
            std::visit(*this, member.value);
        }
        std::cout << " }";
    }
};

/// A counter of any width, or - where it is missing or wider than 64 bits.
void print(std::string_view name, std::optional<IntegerView> const& counter) {
    std::cout << " " << name << " ";
    if (!counter || std::holds_alternative<Octets>(*counter)) {
        std::cout << "-";
    } else if (auto const* const number = std::get_if<std::int64_t>(&*counter)) {
        std::cout << *number;
    } else {
        std::cout << std::get<std::uint64_t>(*counter);
    }
}

void print(GooseView const& goose) {
    print("stNum", goose.stNum);
    print("sqNum", goose.sqNum);
    print("confRev", goose.confRev);
    std::cout << " data";
    for (DataView const& value : goose.allData.value_or(DataViews())) {
        std::cout << " ";
        std::visit(PrintContent(), value.value);
    }
    goose.visitFaults([](Fault const& fault) { std::cout << " fault at " << fault.offset; });
    std::cout << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: decode-goose FILE\n";
        return 1;
    }
    try {
        CaptureFile capture(argv[1]);
        while (auto const* const view = capture.next()) {
            // The view points into this frame, which holds until the next one is read.
            GooseView const goose = viewGoose(view->frame);
            if (goose.header.isGoose() && view->record.time) {
                std::cout << nanosecondsSince1970(*view->record.time);
                print(goose);
            }
        }
        return capture.damage() ? 2 : 0;
    } catch (std::exception const& problem) {
        std::cerr << "decode-goose: " << problem.what() << "\n";
        return 1;
    }
}
