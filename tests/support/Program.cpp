#include "Program.h"

#include "FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

extern char** environ; // NOLINT(readability-redundant-declaration): not in every unistd.h

namespace velmora::test {
namespace {

[[noreturn]] void fail(int errorNumber, const std::string& what) {
    throw std::system_error(errorNumber, std::generic_category(), what);
}

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            fail(errno, "pipe");
        }
        read = FileDescriptor(ends[0]);
        write = FileDescriptor(ends[1]);
    }
    FileDescriptor read;
    FileDescriptor write;
};

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void open(int target, const std::string& path, int flags) {
        posix_spawn_file_actions_addopen(&actions_, target, path.c_str(), flags, 0666);
    }
    void duplicate(int source, int target) {
        posix_spawn_file_actions_adddup2(&actions_, source, target);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

pid_t spawn(std::vector<std::string>& arguments, const FileActions& actions) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t process = 0;
    const int result =
        posix_spawnp(&process, pointers[0], actions.get(), nullptr, pointers.data(), environ);
    if (result != 0) {
        fail(result, arguments[0]);
    }
    return process;
}

/// Appends what can be read now; closes the descriptor at the end of the stream.
void readInto(std::string& text, FileDescriptor& source) {
    std::array<char, 65536> block{};
    const ssize_t count = ::read(source.get(), block.data(), block.size());
    if (count > 0) {
        text.append(block.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        source.close();
    }
}

/// Both at once, so that the program never waits for either to be read.
void readBoth(ProgramResult& result, FileDescriptor& output, FileDescriptor& errors) {
    while (output.isOpen() || errors.isOpen()) {
        std::array<pollfd, 2> ends{{{output.get(), POLLIN, 0}, {errors.get(), POLLIN, 0}}};
        if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) {
            fail(errno, "poll");
        }
        if (ends[0].revents != 0) {
            readInto(result.output, output);
        }
        if (ends[1].revents != 0) {
            readInto(result.errors, errors);
        }
    }
}

int waitFor(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            fail(errno, "waitpid");
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

ProgramResult runProgram(std::vector<std::string> arguments,
                         const std::filesystem::path& outputFile) {
    Pipe output;
    Pipe errors;
    FileActions actions;
    actions.open(STDIN_FILENO, "/dev/null", O_RDONLY);
    if (outputFile.empty()) {
        actions.duplicate(output.write.get(), STDOUT_FILENO);
    } else {
        actions.open(STDOUT_FILENO, outputFile.string(), O_WRONLY | O_CREAT | O_TRUNC);
    }
    actions.duplicate(errors.write.get(), STDERR_FILENO);
    const pid_t process = spawn(arguments, actions);
    output.write.close();
    errors.write.close();

    ProgramResult result;
    readBoth(result, output.read, errors.read);
    result.status = waitFor(process);
    return result;
}

} // namespace velmora::test
