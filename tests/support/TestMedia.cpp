#include "TestMedia.h"

#include "FileDescriptor.h"
#include "MediaRecipes.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

using Kind = MediaRecipe::Kind;

const MediaRecipe& recipeOf(const std::string& name) {
    const auto found = std::ranges::find(mediaRecipes(), name, &MediaRecipe::name);
    if (found == mediaRecipes().end()) {
        throw std::invalid_argument("no media file is named " + name);
    }
    return *found;
}

/// The file that a word of a command stands for; empty when it is an argument as it is.
std::string mediaNamedIn(const std::string& word) {
    return word.starts_with('@') ? word.substr(1) : std::string();
}

std::vector<std::string> wordsOf(const std::string& command) {
    std::istringstream words(command);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

/// All that the content depends on, and so of the files that it is made from.
std::string descriptionOf(const MediaRecipe& recipe) {
    std::string text = recipe.name + '\n' + recipe.command + (recipe.piped ? " |" : "");
    if (recipe.edit != nullptr) {
        Bytes sample(8000);
        for (std::size_t i = 0; i < sample.size(); ++i) {
            sample[i] = static_cast<std::uint8_t>("FMP4 FFV1 "[i % 10]);
        }
        recipe.edit(sample);
        text.append(sample.begin(), sample.end());
    }
    for (const std::string& name : wordsOf(recipe.sources)) {
        text += descriptionOf(recipeOf(name));
    }
    for (const std::string& word : wordsOf(recipe.command)) {
        if (const std::string other = mediaNamedIn(word); !other.empty()) {
            text += descriptionOf(recipeOf(other));
        }
    }
    return text;
}

/// 64-bit FNV-1a.
std::string hashOf(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char character : text) {
        hash = (hash ^ static_cast<std::uint8_t>(character)) * 0x100000001b3;
    }
    std::ostringstream digits;
    digits << std::hex << std::setw(16) << std::setfill('0') << hash;
    return digits.str();
}

/// Held by the process that makes the file, so that others wait for it instead of making it too.
class Lock {
public:
    explicit Lock(const fs::path& path)
        : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
        while (flock(file_.get(), LOCK_EX) != 0) {
            if (errno != EINTR) {
                throw std::system_error(errno, std::generic_category(), path.string());
            }
        }
    }

private:
    FileDescriptor file_;
};

void runFfmpeg(const MediaRecipe& recipe, const fs::path& target) {
    std::vector<std::string> command{"ffmpeg", "-v", "error", "-nostdin", "-y"};
    for (const std::string& word : wordsOf(recipe.command)) {
        const std::string other = mediaNamedIn(word);
        command.push_back(other.empty() ? word : mediaPath(other));
    }
    command.push_back(recipe.piped ? "pipe:1" : target.string());
    const ProgramResult result = runProgram(command, recipe.piped ? target : fs::path());
    if (result.status != 0) {
        throw std::runtime_error("cannot make " + recipe.name + ": " + result.errors);
    }
}

void make(const MediaRecipe& recipe, const fs::path& target) {
    if (!recipe.command.empty()) {
        runFfmpeg(recipe, target);
    } else {
        Bytes content;
        for (const std::string& name : wordsOf(recipe.sources)) {
            const Bytes bytes = readFile(mediaPath(name));
            content.insert(content.end(), bytes.begin(), bytes.end());
        }
        if (recipe.edit != nullptr) {
            recipe.edit(content);
        }
        writeFile(target, content);
    }
}

std::vector<std::string> namesWhere(const std::function<bool(Kind)>& wanted) {
    std::vector<std::string> names;
    for (const MediaRecipe& recipe : mediaRecipes()) {
        if (wanted(recipe.kind)) {
            names.push_back(recipe.name);
        }
    }
    return names;
}

} // namespace

// The folder's name tells the command, so a changed command makes the file again. A file gets its
// name when it is complete.
std::string mediaPath(const std::string& name) {
    const MediaRecipe& recipe = recipeOf(name);
    const fs::path folder = fs::path(VELMORA_TEST_MEDIA) / hashOf(descriptionOf(recipe));
    fs::path file = folder / name;
    if (fs::exists(file)) {
        return file;
    }
    fs::create_directories(folder);
    const Lock lock(folder / "lock");
    if (!fs::exists(file)) {
        const fs::path unfinished = folder / ("unfinished-" + name);
        make(recipe, unfinished);
        fs::rename(unfinished, file);
    }
    return file;
}

std::string copyOfMedia(const std::string& name, const TemporaryFolder& folder) {
    std::string target = folder / name;
    fs::copy_file(mediaPath(name), target);
    return target;
}

std::vector<std::string> videoMedia() {
    return namesWhere([](Kind kind) { return kind == Kind::Video; });
}

std::vector<std::string> readableMedia() {
    return namesWhere([](Kind kind) { return kind != Kind::Other; });
}

std::string asTestName(const std::string& mediaName) {
    std::string name = mediaName;
    std::ranges::replace_if(
        name, [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
    return name;
}

} // namespace velmora::test
