#pragma once

#include "MediaReader.h"
#include "Program.h"
#include "TestFiles.h"

#include <string>
#include <vector>

namespace velmora::test {

/// The path of one of the media files of MediaRecipes.cpp, by its name there. The file is made on
/// first use, from the command recorded there, and shared by all tests: never write to it. Throws
/// when it cannot be made or has no such name.
std::string mediaPath(const std::string& name);

/// A copy of it in the test's own folder, which may be written to; the new file's path.
std::string copyOfMedia(const std::string& name, const TemporaryFolder& folder);

/// Names of files with at least one picture that can be decoded.
std::vector<std::string> videoMedia();
/// Names of all files that the media libraries open and tell the streams of.
std::vector<std::string> readableMedia();

/// For test parameters: the name with the characters that a test's name may have.
std::string asTestName(const std::string& mediaName);

} // namespace velmora::test
