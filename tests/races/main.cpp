#include "EngineLog.h"
#include "TestProgram.h"

int main(int argc, char** argv) {
    velmora::setLogSink([](const char* /*line*/) {});
    return velmora::test::runTests(argc, argv);
}
