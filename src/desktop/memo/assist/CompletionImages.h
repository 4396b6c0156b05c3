#pragma once
// The images of the completion list, drawn to any scale.
#include <QRectF>

class QPainter;

/// Those of TAutoCompletionListBox::ImageOf: variable, property, event, procedure and method. Nothing for -1.
void DrawCompletionImage(QPainter& painter, int image, const QRectF& square, bool dark);
