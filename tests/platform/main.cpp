#include "TestProgram.h"

int main(int argc, char** argv) {
    return velmora::test::runTests(argc, argv);
}
