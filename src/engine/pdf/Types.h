#pragma once
// Enumerations and small records of the PDF engine layer.
#include "base/Text.h"

#include <QObject>

/// Holds the enumerations for the run-time tables; code uses the global names below.
class TPDFTypes {
    Q_GADGET
public:
    /// What a viewer shows beside the page (ISO 32000-1, table 28).
    enum class TPDFPageMode : quint8 {
        pmUseNone,
        pmUseOutlines,
        pmUseThumbs,
        pmFullScreen,
        pmUseOC,
        pmUseAttachments
    };
    Q_ENUM(TPDFPageMode)

    /// How a viewer arranges the pages (ISO 32000-1, table 28).
    enum class TPDFPageLayout : quint8 {
        plSinglePage,
        plOneColumn,
        plTwoColumnLeft,
        plTwoColumnRight,
        plTwoPageLeft,
        plTwoPageRight
    };
    Q_ENUM(TPDFPageLayout)

    enum class TZQPDFPagePosition : quint8 { ppCurrent, ppFirst, ppLast };
    Q_ENUM(TZQPDFPagePosition)

    /// The kinds of explicit destination (ISO 32000-1, table 151).
    enum class TPDFLinkDestKind : quint8 { ldXYZ, ldFit, ldFitH, ldFitV, ldFitR, ldFitB, ldFitBH, ldFitBV };
    Q_ENUM(TPDFLinkDestKind)

    /// Which password a test is about: the one that opens a file, the one that lifts its restrictions.
    enum class TIsPasswordOkOption : quint8 { poAny, poOpen, poPermission };
    Q_ENUM(TIsPasswordOkOption)

    enum class TPDFSecurityHandlerType : quint8 { shNone, shPassword, shPublicKey };
    Q_ENUM(TPDFSecurityHandlerType)

    /// Where something stands between the sides of a page as displayed.
    enum class TPDFHorizontalPosition : quint8 { hpLeft, hpCenter, hpRight };
    Q_ENUM(TPDFHorizontalPosition)
    enum class TPDFVerticalPosition : quint8 { vpTop, vpCenter, vpBottom };
    Q_ENUM(TPDFVerticalPosition)
};

using TPDFPageMode = TPDFTypes::TPDFPageMode;
using TPDFPageLayout = TPDFTypes::TPDFPageLayout;
using TPDFHorizontalPosition = TPDFTypes::TPDFHorizontalPosition;
using TPDFVerticalPosition = TPDFTypes::TPDFVerticalPosition;
using TZQPDFPagePosition = TPDFTypes::TZQPDFPagePosition;
using TPDFLinkDestKind = TPDFTypes::TPDFLinkDestKind;
using TIsPasswordOkOption = TPDFTypes::TIsPasswordOkOption;
using TPDFSecurityHandlerType = TPDFTypes::TPDFSecurityHandlerType;

/// Widths in points to take from the sides of a page as it is displayed.
struct TPDFMargins {
    Double Top = 0;
    Double Left = 0;
    Double Right = 0;
    Double Bottom = 0;

    static TPDFMargins Create(Double top, Double left, Double right, Double bottom) {
        return {top, left, right, bottom};
    }
};

/// A point in layer space: points from the top left corner of the displayed page, y down.
struct TGPPointF {
    Single X = 0;
    Single Y = 0;

    static TGPPointF Create(Single x, Single y) { return {x, y}; }
};

/// Colours between their two forms.
struct TGPColor {
    /// 0x00BBGGRR as 0xAARRGGBB.
    static constexpr ARGB ColorRefToARGB(TColor color, quint8 alpha) {
        const quint32 c = color.Value;
        return quint32(alpha) << 24 | (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF);
    }
    /// Opaque.
    static constexpr ARGB FromColorRef(TColor color) { return ColorRefToARGB(color, 255); }
};

/// A rectangle in layer space.
struct TGPRectF {
    Single X = 0;
    Single Y = 0;
    Single Width = 0;
    Single Height = 0;

    static TGPRectF Create(Single x, Single y, Single width, Single height) { return {x, y, width, height}; }
};
