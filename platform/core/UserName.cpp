#include "UserName.h"

#include <pwd.h>
#include <unistd.h>

namespace velmora {

QString userName() {
    const passwd* const user = getpwuid(geteuid());
    return user != nullptr ? QString::fromLocal8Bit(user->pw_name) : QString();
}

} // namespace velmora
