#pragma once
// Annotations that viewers keep upright, whichever way a page is turned: notes, and those that ask for it
// (ISO 32000-1, table 165, NoRotate). The painter turns all of them with the page.
#include "engine/pdf/Qpdf.h"

/// Gives each such annotation of a page that is turned by `rotation` the rectangle and the appearance with
/// which it is seen upright when it is turned along. Their appearance streams must be objects of the page's
/// own.
void TurnUpright(const QPDFObjectHandle& page, int rotation);
