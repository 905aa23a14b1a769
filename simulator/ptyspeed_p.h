#pragma once

namespace zelmodems::sim {
// The output line speed set on a terminal, in bits per second, including
// speeds set through BOTHER; 0 when it cannot be read.
int readLineSpeed(int fd);
}
