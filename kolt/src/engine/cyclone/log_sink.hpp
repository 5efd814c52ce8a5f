// The way of the engine's log into the middleware's.
#pragma once

namespace kolt::engine {

// Makes the engine log to the middleware's logger from now on. To be called before the engine is
// used; calls after the first do nothing. Thread-safe.
void install_log_sink();

// Tells the engine which of its categories are wanted, after verbosities have changed. Lock-free:
// verbosities may be changed while the engine is logging, on that very thread too. Installing the
// sink makes this the verbosity hook of kolt::log.
void refresh_log_mask();

}  // namespace kolt::engine
