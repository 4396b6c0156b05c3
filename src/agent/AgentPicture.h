#pragma once
// The agent's own picture, drawn without a window system: a folder that holds a sheet.
#include "platform/Picture.h"

/// The picture that stands in the tray, `size` pixels wide and high.
[[nodiscard]] TPicture AgentPicture(int size);

/// The same while something needs attention.
[[nodiscard]] TPicture AttentionPicture(int size);

inline constexpr int AgentFrames = 6;

/// One frame of the sheet on its way into the folder; frame 0 is highest, the last one stands in it.
[[nodiscard]] TPicture AgentFrame(int size, int frame);
