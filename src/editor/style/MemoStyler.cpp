#include "editor/style/MemoStyler.h"

#include <QRect>

namespace {

int FindFirstKind(const QStringList& markers, QStringView text, int& length) {
    for (const string& marker : markers) {
        length = int(marker.size());
        if (const qsizetype at = text.indexOf(marker); at >= 0)
            return int(at) + 1;
    }
    return 0;
}

} // namespace

TAdvCustomMemoStyler::TAdvCustomMemoStyler(TComponent* owner) : TComponent(owner) {}

TAdvCustomMemoStyler::~TAdvCustomMemoStyler() {
    FAllStyles.FOwner = nullptr;
}

void TAdvCustomMemoStyler::Loaded() {
    if (!FAllStyles.Modified())
        FAllStyles.Clear();
}

bool TAdvCustomMemoStyler::HasMultiComment() const {
    if (!FMultiCommentLeft.isEmpty() && !FMultiCommentRight.isEmpty())
        return true;
    for (int i = 0; i < FAllStyles.Count(); ++i) {
        const TElementStyle& element = FAllStyles[i];
        if (element.StyleType() == stComment && !element.CommentLeft().isEmpty() &&
            !element.CommentRight().isEmpty())
            return true;
    }
    return false;
}

QStringList TAdvCustomMemoStyler::CommentStarts() const {
    QStringList markers;
    if (!FMultiCommentLeft.isEmpty())
        markers.append(FMultiCommentLeft);
    for (int i = 0; i < FAllStyles.Count(); ++i) {
        if (FAllStyles[i].StyleType() == stComment && !FAllStyles[i].CommentLeft().isEmpty())
            markers.append(FAllStyles[i].CommentLeft());
    }
    return markers;
}

QStringList TAdvCustomMemoStyler::CommentEnds() const {
    QStringList markers;
    if (!FMultiCommentRight.isEmpty())
        markers.append(FMultiCommentRight);
    for (int i = 0; i < FAllStyles.Count(); ++i) {
        if (FAllStyles[i].StyleType() == stComment && !FAllStyles[i].CommentRight().isEmpty())
            markers.append(FAllStyles[i].CommentRight());
    }
    return markers;
}

int TAdvCustomMemoStyler::FindCommentStart(QStringView text, int& length) const {
    return FindFirstKind(CommentStarts(), text, length);
}

int TAdvCustomMemoStyler::FindCommentEnd(QStringView text, int& length) const {
    return FindFirstKind(CommentEnds(), text, length);
}

void TAdvCustomMemoStyler::DrawKeyword(void* /*canvas*/, const string& /*word*/, const QRect& /*rect*/) {}
