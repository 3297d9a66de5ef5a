// Runs a fuzz target where the compiler brings no fuzzer of its own:
//     fuzz_X SEEDS-FOLDER INPUTS RANDOM-SEED
// The same inputs each time: every seed as it is, then seeds with a few random changes. The input
// under way is kept in the file last-input, so that what ends the process can be tried again.

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <vector>

#include <unistd.h>

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's name for it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;
using Input = std::vector<std::uint8_t>;

constexpr std::size_t kMostBytes = 65536;
constexpr unsigned kLimitSeconds = 60; // a sanitizer on a busy machine is slow

class Mutator {
public:
    explicit Mutator(unsigned seed) : engine_(seed) {}

    std::size_t below(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine_);
    }
    Input mutated(Input input) {
        constexpr std::size_t most = 8;
        for (std::size_t i = below(most) + 1; i > 0 && !input.empty(); --i) {
            changeOnce(input);
        }
        return input;
    }

private:
    static constexpr std::array<std::uint8_t, 6> kTelling{0x00, 0x01, 0x7f, 0x80, 0xfe, 0xff};

    void changeOnce(Input& input) {
        switch (below(6)) {
        case 0:
            input[below(input.size())] ^= static_cast<std::uint8_t>(1U << below(8));
            break;
        case 1:
            input[below(input.size())] = static_cast<std::uint8_t>(below(256));
            break;
        case 2:
            std::ranges::fill(stretchOf(input), kTelling[below(kTelling.size())]);
            break;
        case 3:
            erase(input);
            break;
        case 4:
            insertCopy(input);
            break;
        default:
            input.resize(below(input.size()) + 1);
            break;
        }
    }
    std::span<std::uint8_t> stretchOf(Input& input) {
        constexpr std::size_t longest = 8;
        const std::size_t first = below(input.size());
        return std::span(input).subspan(first, below(std::min(longest, input.size() - first)) + 1);
    }
    void erase(Input& input) {
        const auto stretch = stretchOf(input);
        const auto first = input.begin() + (stretch.data() - input.data());
        input.erase(first, first + static_cast<std::ptrdiff_t>(stretch.size()));
    }
    void insertCopy(Input& input) {
        const auto stretch = stretchOf(input);
        const Input copy(stretch.begin(), stretch.end());
        input.insert(input.begin() + static_cast<std::ptrdiff_t>(below(input.size())), copy.begin(),
                     copy.end());
    }

    std::mt19937 engine_;
};

Input read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    Input input{std::istreambuf_iterator<char>(file), {}};
    input.resize(std::min(input.size(), kMostBytes));
    return input;
}

std::vector<Input> seedsIn(const fs::path& folder) {
    std::vector<fs::path> paths{fs::directory_iterator(folder), {}};
    std::ranges::sort(paths);
    std::vector<Input> seeds;
    std::ranges::transform(paths, std::back_inserter(seeds), read);
    return seeds;
}

void tryInput(const Input& input) {
    std::ofstream("last-input", std::ios::binary)
        .write(reinterpret_cast<const char*>(input.data()),
               static_cast<std::streamsize>(input.size()));
    alarm(kLimitSeconds); // ends the process
    LLVMFuzzerTestOneInput(input.data(), input.size());
    alarm(0);
}

void tryInputs(const std::vector<Input>& seeds, std::size_t count, unsigned randomSeed) {
    Mutator mutator(randomSeed);
    std::ranges::for_each(seeds, tryInput);
    for (std::size_t i = seeds.size(); i < count; ++i) {
        tryInput(mutator.mutated(seeds[mutator.below(seeds.size())]));
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> words(argv + 1, argv + argc);
        const std::vector<Input> seeds = seedsIn(words.at(0));
        if (seeds.empty()) {
            throw std::invalid_argument("no seeds");
        }
        tryInputs(seeds, std::stoul(words.at(1)), static_cast<unsigned>(std::stoul(words.at(2))));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "usage: " << argv[0] << " SEEDS-FOLDER INPUTS RANDOM-SEED (" << error.what()
                  << ")\n";
        return 2;
    }
}
