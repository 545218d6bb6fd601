#include "bench/Passes.hpp"

#include <fcntl.h>
#include <pcap/pcap.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <TalIec61850Parser/TalIec61850Parser.hpp>
#include <array>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "bench/PacketsIn.hpp"

namespace TalBench {

using TalIec61850Parser::Db;
using TalIec61850Parser::Filter;

namespace {

constexpr std::size_t blockSize = std::size_t{1} << 20;

std::uint64_t readThrough(std::string const& path, std::vector<char>& block) {
    int const file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::uint64_t octets = 0;
    ssize_t count = 0;
    while ((count = ::read(file, block.data(), block.size())) > 0) {
        octets += static_cast<std::uint64_t>(count);
    }
    ::close(file);
    return octets;
}

std::uint64_t walkRecords(std::string const& path) {
    std::array<char, PCAP_ERRBUF_SIZE> error{};
    std::unique_ptr<pcap_t, void (*)(pcap_t*)> const file(
        pcap_open_offline(path.c_str(), error.data()), [](pcap_t* open) {
            if (open != nullptr) {
                pcap_close(open);
            }
        });
    std::uint64_t frames = 0;
    pcap_pkthdr* header = nullptr;
    unsigned char const* frame = nullptr;
    while (file && pcap_next_ex(file.get(), &header, &frame) == 1) {
        ++frames;
    }
    return frames;
}

/// Runs a program whose output nobody reads.
/// @return whether it ended well
bool runSilently(std::vector<std::string> command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (auto& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    for (int const output : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
    }
    pid_t child = 0;
    int const failure =
        posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    return failure == 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

/// GOOSE and SV frames of all files.
std::uint64_t framesIn(TalIec61850Analysis::TrafficIndex const& index) {
    std::uint64_t frames = 0;
    for (auto const& file : index.files()) {
        frames += file.summary.gooseFrames + file.summary.svFrames;
    }
    return frames;
}

}  // namespace

Race::Body indexPass(std::string const& path, Filter const& filter, std::uint64_t packets,
                     std::function<void(double)> const& progress,
                     TalIec61850Parser::IndexOptions const& options) {
    return [=](benchmark::State& state) {
        std::atomic<bool> const neverStop = false;
        for (auto _ : state) {
            auto db = std::make_unique<Db>();
            TalIec61850Parser::PcapParser::parseFile(path, *db, filter, neverStop, progress,
                                                     options);
            state.PauseTiming();
            if (packetsIn(*db) != packets) {
                state.SkipWithError("the index does not hold what it should");
                return;
            }
            db.reset();
            state.ResumeTiming();
        }
    };
}

Race::Body trafficPass(std::vector<std::string> const& paths,
                       TalIec61850Analysis::TrafficOptions const& options, std::uint64_t frames) {
    return [=](benchmark::State& state) {
        for (auto _ : state) {
            auto index = std::make_unique<TalIec61850Analysis::TrafficIndex>(
                TalIec61850Analysis::indexCaptures(paths, options));
            state.PauseTiming();
            if (framesIn(*index) != frames) {
                state.SkipWithError("the index does not hold what it should");
                return;
            }
            index.reset();
            state.ResumeTiming();
        }
    };
}

Race::Body processesPass(std::vector<std::string> const& paths) {
    auto const middle = paths.begin() + static_cast<std::ptrdiff_t>(paths.size() / 2);
    std::array const halves = {std::vector(paths.begin(), middle),
                               std::vector(middle, paths.end())};
    return [halves](benchmark::State& state) {
        for (auto _ : state) {
            for (auto const& half : halves) {
                if (::fork() == 0) {
                    static_cast<void>(TalIec61850Analysis::indexCaptures(half, {.jobs = 1}));
                    ::_exit(0);
                }
            }
            bool isDone = true;
            for ([[maybe_unused]] auto const& half : halves) {
                int status = 0;
                isDone = ::wait(&status) > 0 && WIFEXITED(status) && isDone;
            }
            if (!isDone) {
                state.SkipWithError("a process did not index its captures");
            }
        }
    };
}

Race::Body readPass(std::string const& path) {
    return [path, size = std::filesystem::file_size(path)](benchmark::State& state) {
        std::vector<char> block(blockSize);
        for (auto _ : state) {
            if (readThrough(path, block) != size) {
                state.SkipWithError("the file was not read to its end");
                return;
            }
        }
    };
}

Race::Body fromDisk(std::string const& path, Race::Body contender) {
    return [path, contender = std::move(contender)](benchmark::State& state) {
        TalIec61850Analysis::Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        // What is not written yet is not dropped.
        bool const isDropped = ::fsync(file.number()) == 0 &&
                               ::posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED) == 0;
        if (!isDropped) {
            state.SkipWithError("the system does not drop the file from its memory");
            return;
        }
        contender(state);
    };
}

Race::Body libpcapPass(std::string const& path, std::uint64_t frames) {
    return [=](benchmark::State& state) {
        for (auto _ : state) {
            if (walkRecords(path) != frames) {
                state.SkipWithError("libpcap did not find all records");
                return;
            }
        }
    };
}

Race::Body tsharkPass(std::string const& path) {
    return [path](benchmark::State& state) {
        for (auto _ : state) {
            if (!runSilently({"tshark", "-r", path, "-T", "fields", "-e", "frame.time_epoch", "-e",
                              "sv.svID", "-e", "sv.smpCnt"})) {
                state.SkipWithError("tshark failed");
                return;
            }
        }
    };
}

bool hasTshark() {
    static bool const has = runSilently({"tshark", "--version"});
    return has;
}

}  // namespace TalBench
