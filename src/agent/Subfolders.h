#pragma once
// What a watched folder has in it.

inline constexpr char OutputFolder[] = "output";   ///< results
inline constexpr char ProcessFolder[] = "process"; ///< sources that were done
inline constexpr char ErrorFolder[] = "Error";     ///< sources that failed
