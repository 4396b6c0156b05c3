#include "engine/render/UprightAnnotations.h"

namespace {

constexpr long long NoRotateFlag = 1 << 4;

using TMatrix = QPDFObjectHandle::Matrix;
using TRectangle = QPDFObjectHandle::Rectangle;

bool StaysUpright(const QPDFObjectHandle& annotation) {
    QPDFObjectHandle flags = Entry(annotation, "/F");
    return IsName(Entry(annotation, "/Subtype"), "/Text") ||
           (flags.isInteger() && (flags.getIntValue() & NoRotateFlag) != 0);
}

/// `first`, then a turn counter-clockwise by so many quarters.
TMatrix Turned(TMatrix first, int quarters) {
    for (; quarters > 0; --quarters)
        first = {-first.b, first.a, -first.d, first.c, -first.f, first.e};
    return first;
}

/// The rectangle turned counter-clockwise around its upper left corner.
TRectangle Turned(const TRectangle& box, int quarters) {
    const Double width = box.urx - box.llx;
    const Double height = box.ury - box.lly;
    const Double x = box.llx;
    const Double y = box.ury;
    switch (quarters) {
    case 1:
        return {x, y, x + height, y + width};
    case 2:
        return {x - width, y, x, y + height};
    default:
        return {x - height, y - width, x, y};
    }
}

/// Other annotations may share the stream.
QPDFObjectHandle TurnedForm(QPDFObjectHandle form, int quarters) {
    QPDFObjectHandle turned = form.copyStream();
    QPDFObjectHandle matrix = turned.getDict().getKey("/Matrix");
    turned.getDict().replaceKey(
        "/Matrix", QPDFObjectHandle::newArray(Turned(
                       matrix.isMatrix() ? matrix.getArrayAsMatrix() : TMatrix(1, 0, 0, 1, 0, 0), quarters)));
    return turned;
}

/// An appearance is a stream, or a dictionary with one for each state.
QPDFObjectHandle TurnedAppearance(QPDFObjectHandle appearance, int quarters) {
    if (appearance.isStream())
        return TurnedForm(appearance, quarters);
    if (!appearance.isDictionary())
        return appearance;
    QPDFObjectHandle states = QPDFObjectHandle::newDictionary();
    for (auto& [name, state] : appearance.getDictAsMap())
        states.replaceKey(name, state.isStream() ? TurnedForm(state, quarters) : state);
    return states;
}

} // namespace

void TurnUpright(const QPDFObjectHandle& page, int rotation) {
    QPDFObjectHandle annotations = Entry(page, "/Annots");
    if (rotation == 0 || !annotations.isArray())
        return;
    const int quarters = rotation / 90;
    for (QPDFObjectHandle annotation : annotations.getArrayAsVector()) {
        QPDFObjectHandle box = Entry(annotation, "/Rect");
        QPDFObjectHandle appearance = Entry(Entry(annotation, "/AP"), "/N");
        if (!StaysUpright(annotation) || !box.isRectangle() || appearance.isNull())
            continue;
        QPDFObjectHandle turned = QPDFObjectHandle::newDictionary();
        turned.replaceKey("/N", TurnedAppearance(appearance, quarters));
        annotation.replaceKey("/AP", turned);
        annotation.replaceKey("/Rect",
                              QPDFObjectHandle::newArray(Turned(box.getArrayAsRectangle(), quarters)));
    }
}
