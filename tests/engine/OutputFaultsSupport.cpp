#include "OutputFaultsSupport.h"

#include <sys/wait.h>
#include <unistd.h>

namespace velmora::test {

std::string largeSource() {
    return mediaMadeBy("-f lavfi -i nullsrc=size=320x180:rate=25:duration=4,noise=alls=100:allf=t"
                       " -c:v mpeg4 -q:v 4 -g 25",
                       "large.mp4");
}

int statusOf(const std::function<int()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(action());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace velmora::test
