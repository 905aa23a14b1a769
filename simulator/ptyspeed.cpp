// Kept apart from the rest of the simulator: <asm/termbits.h> (struct
// termios2, needed for speeds outside the Bnnn table) clashes with
// the C library's <termios.h>.
#include "ptyspeed_p.h"

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace zelmodems::sim {

int readLineSpeed(int fd)
{
    struct termios2 tio;
    if (::ioctl(fd, TCGETS2, &tio) != 0)
        return 0;
    return int(tio.c_ospeed);
}

} // namespace zelmodems::sim
