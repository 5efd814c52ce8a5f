// SPDX-License-Identifier: Apache-2.0
// Takes the engine's log messages to the middleware's logger.
#pragma once

namespace kolt::engine {

// Makes the engine log to the middleware's logger from now on. Must be called before the engine is
// used; calls after the first do nothing. Thread-safe.
void install_log_sink();

// Tells the engine which of its categories are enabled, after verbosities have changed. Lock-free:
// verbosities may be changed while the engine is logging, on that very thread too. Installing the
// sink makes this the verbosity hook of kolt::log.
void refresh_log_mask();

}  // namespace kolt::engine
