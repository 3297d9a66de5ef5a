// The switches that scripts/mutants writes into its copy of the sources: change N is made while
// VELMORA_MUTANT is N. With VELMORA_MUTANT_RECORD the numbers that are asked for go into that file.

#pragma once

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

inline void velmoraRecordMutant(const char* file, std::size_t number) {
    static std::array<std::atomic<bool>, 10'000> recorded;
    if (recorded.at(number).exchange(true)) {
        return;
    }
    const int savedErrno = errno;
    const int descriptor = open(file, O_WRONLY | O_APPEND | O_CLOEXEC);
    const std::string line = std::to_string(number) + '\n';
    // A process that a test has left no rights comes to nothing that others do not come to as well.
    [[maybe_unused]] const auto written = write(descriptor, line.data(), line.size());
    close(descriptor);
    errno = savedErrno;
}

inline bool velmoraMutant(std::size_t number) {
    static const char* const record = std::getenv("VELMORA_MUTANT_RECORD");
    static const char* const chosen = std::getenv("VELMORA_MUTANT");
    static const std::size_t active = chosen ? std::strtoul(chosen, nullptr, 10) : 0;
    if (record) {
        velmoraRecordMutant(record, number);
    }
    return number == active;
}
