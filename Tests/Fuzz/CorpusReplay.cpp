// Stands in for libFuzzer where there is none: feeds a fuzz target every file of its corpus, and a fixed
// number of variations of each.

#include "Fuzz/Fuzzer.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

namespace {

using Input = std::vector<std::uint8_t>;

constexpr int VariationsOfEach = 4000;

std::vector<Input> readCorpus(const char *folder)
{
    std::vector<Input> corpus;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return corpus;
}

std::size_t placeIn(const Input &input, std::mt19937 &random)
{
    return random() % (input.size() + 1);
}

/// Changes, takes away or puts in a few bytes, or a piece of another input.
Input variation(Input input, const std::vector<Input> &corpus, std::mt19937 &random)
{
    for (auto changes = 1 + random() % 4; changes > 0; --changes) {
        const auto place = static_cast<std::ptrdiff_t>(placeIn(input, random));
        switch (random() % 4) {
        case 0:
            if (place < std::ssize(input))
                input[static_cast<std::size_t>(place)] = static_cast<std::uint8_t>(random());
            break;
        case 1:
            input.erase(input.begin() + place,
                        input.begin() + place +
                            static_cast<std::ptrdiff_t>(random() % (input.size() - std::size_t(place) + 1)));
            break;
        case 2:
            input.insert(input.begin() + place, static_cast<std::uint8_t>(random()));
            break;
        default: {
            const Input &other = corpus[random() % corpus.size()];
            const auto begin = placeIn(other, random);
            const auto count = random() % (other.size() - begin + 1);
            const auto from = other.begin() + static_cast<std::ptrdiff_t>(begin);
            input.insert(input.begin() + place, from, from + static_cast<std::ptrdiff_t>(count));
        }
        }
    }
    return input;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const auto corpus = argumentCount == 2 ? readCorpus(arguments[1]) : std::vector<Input>();
    if (corpus.empty()) {
        std::fprintf(stderr, "usage: %s FOLDER (with at least one file)\n", arguments[0]);
        return 2;
    }
    std::mt19937 random(20);
    for (const Input &input : corpus) {
        LLVMFuzzerTestOneInput(input.data(), input.size());
        for (int count = 0; count < VariationsOfEach; ++count) {
            const Input varied = variation(input, corpus, random);
            LLVMFuzzerTestOneInput(varied.data(), varied.size());
        }
    }
    std::printf("%zu inputs and their variations\n", corpus.size());
    return 0;
}
