#pragma once

namespace plemora {

/// Gives the pages of code and constants that are mapped from files back to the system's cache,
/// the libraries' included. Most were needed for starting alone, to bind symbols above all; one
/// that is needed again is mapped again when it is touched, in microseconds. What was written to
/// stays. Any thread.
void giveBackStartingCode();

}  // namespace plemora
