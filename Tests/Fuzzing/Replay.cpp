// Runs a target over kept inputs, where there is no fuzzer: the seeds, and what once failed.
#include "Tests/Fuzzing/Promise.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argumentCount, char** arguments) {
    std::size_t count = 0;
    for (int i = 1; i < argumentCount; ++i) {
        for (const auto& each : std::filesystem::directory_iterator(arguments[i])) {
            std::ifstream file(each.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
            std::printf("%s\n", each.path().filename().c_str());
            std::fflush(stdout);
            kestrove::fuzzing::examine(
                {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}
