#pragma once
// The pictures of annotations that stand as an icon on the page: our own drawings, in points.
#include "engine/annotations/Shapes.h"

/// A speech bubble with lines of writing.
inline constexpr Double CommentIconWidth = 20;
inline constexpr Double CommentIconHeight = 20;
void DrawCommentIcon(TFormContent& content, ARGB color);

/// A paper clip, with a light rim that keeps it visible on dark ground.
inline constexpr Double PaperclipIconWidth = 16;
inline constexpr Double PaperclipIconHeight = 20;
void DrawPaperclipIcon(TFormContent& content, ARGB color);
