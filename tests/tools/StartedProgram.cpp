#include "StartedProgram.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <system_error>

namespace velmora::test {
namespace {

char* argumentOf(std::string& word) {
    return word.data();
}

} // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& arguments,
                               const std::filesystem::path& outputFile) {
    std::vector<std::string> words = arguments;
    std::vector<char*> pointers;
    std::ranges::transform(words, std::back_inserter(pointers), &argumentOf);
    pointers.push_back(nullptr);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    errors_ = FileDescriptor(ends[0]);
    const FileDescriptor write(ends[1]);
    const FileDescriptor output(
        open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    process_ = fork();
    if (process_ == 0) {
        dup2(output.get(), STDOUT_FILENO);
        dup2(write.get(), STDERR_FILENO);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
}

StartedProgram::~StartedProgram() {
    wait();
}

std::optional<std::string> StartedProgram::readErrorLine() {
    std::string line;
    for (char character = 0; read(errors_.get(), &character, 1) == 1;) {
        if (character == '\n') {
            return line;
        }
        line += character;
    }
    return std::nullopt;
}

void StartedProgram::send(int signal) {
    kill(process_, signal);
}

int StartedProgram::wait() {
    if (process_ < 0) {
        return -1;
    }
    while (readErrorLine()) { // else it could wait for its lines to be read
    }
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace velmora::test
