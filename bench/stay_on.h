#pragma once

namespace bench {

/// From now on this process, and whatever it starts, runs on this CPU only. Without that the scheduler decides which of two servers
/// shares one with the clients, and sticks to it. Nothing happens on a machine that has no such CPU.
void StayOn(unsigned cpu);

}  // namespace bench
