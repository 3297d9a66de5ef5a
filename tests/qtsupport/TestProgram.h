#pragma once

namespace velmora::test {

/// The main program of tests with windows: runs them and returns the exit status. They need no
/// display, and the user's own folders stay as they are.
int runTests(int argc, char** argv);

} // namespace velmora::test
