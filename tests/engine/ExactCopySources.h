#pragma once

#include <string>

namespace velmora::test {

/// The path of a source for exact copies, by a name of the list in ExactCopySources.cpp. Made on
/// first use and shared by all tests: never write to it.
std::string copySource(const std::string& name);

} // namespace velmora::test
