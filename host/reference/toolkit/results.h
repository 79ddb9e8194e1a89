// What the toolkit's functions answer. A caller only ever tells kSuccess from the rest.
#pragma once

namespace host_reference {

inline constexpr int kSuccess = 0;
inline constexpr int kUnknownDevice = 1;
inline constexpr int kUnknownComponent = 2;
inline constexpr int kUnknownOperation = 3;
inline constexpr int kMissingArgument = 4;
inline constexpr int kNameTaken = 5;
inline constexpr int kSystemRefused = 6; ///< The system would not make or destroy the window.
inline constexpr int kOutOfMemory = 7;
inline constexpr int kBadDescription = 8; ///< The trace says why.
inline constexpr int kUnknownAttribute = 9;
inline constexpr int kUnknownAction = 10;
inline constexpr int kValueOutOfRange = 11;
inline constexpr int kWrongOrder = 12; ///< Not at this stage of the device's life.
inline constexpr int kWrongThread = 13;

} // namespace host_reference
