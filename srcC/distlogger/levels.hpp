// SPDX-License-Identifier: Apache-2.0
// The levels at which the library reports about itself.
#pragma once

namespace vur_dl {

inline constexpr int kLevelFatal = 100;
inline constexpr int kLevelSevere = 200;
inline constexpr int kLevelError = 300;
inline constexpr int kLevelWarning = 400;
inline constexpr int kLevelNotice = 500;
inline constexpr int kLevelInfo = 600;
inline constexpr int kLevelDebug = 700;
inline constexpr int kLevelTrace = 800;

}  // namespace vur_dl
