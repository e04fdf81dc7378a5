#include "platform/posix/PosixStreams.hpp"

#include <fcntl.h>
#include <unistd.h>

namespace vantor {

void OpenStandardStreams() {
    int descriptor = STDIN_FILENO;  // the system gives the lowest that is free
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
    if (descriptor >= 0) close(descriptor);
}

}  // namespace vantor
