#include "engine/layers/TextSource.h"

#include <QStringList>

namespace {
QStringList SplitLines(string text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    return text.split(u'\n');
}
} // namespace

void TZQTextEditSource::SetText(const string& text) {
    FText = text;
    DropLines();
}

void TZQTextEditSource::SetStyle(const TTextStyle& style) {
    FStyle = style;
    DropLines();
}

int TZQTextEditSource::LineCount() const {
    return int(Lines().size());
}

const std::vector<TShapedLine>& TZQTextEditSource::Lines() const {
    if (FLines.empty())
        for (const string& line : SplitLines(FText))
            FLines.push_back(ShapeLine(line, FStyle));
    return FLines;
}
