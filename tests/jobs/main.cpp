#include "TestProgram.h"

extern "C" {
#include <libavutil/log.h>
}

int main(int argc, char** argv) {
    av_log_set_level(AV_LOG_ERROR); // not what encoders tell of each of many runs
    return velmora::test::runTests(argc, argv);
}
