#include "engine/annotations/TextWrap.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <cmath>

namespace {

constexpr Double Tolerance = 0.01; // points, for what adding up widths loses

/// One paragraph cut into lines by the widths of its characters.
class TParagraph {
public:
    TParagraph(const string& text, const TTextStyle& style) : FText(text), FEnds(1, 0.0) {
        const TShapedLine line = ShapeLine(text, style);
        for (int i = 0; i < int(text.size()); ++i)
            FEnds.push_back(FEnds.back() + std::abs(Double(line.Chars.GetItem(i).width)));
    }

    /// Where the line that begins at `start` ends, behind the blanks at its end.
    [[nodiscard]] qsizetype LineEnd(qsizetype start, Double width) const {
        const qsizetype end = LastFitting(QTextBoundaryFinder::Line, start, width);
        if (end > start)
            return end;
        const qsizetype split = LastFitting(QTextBoundaryFinder::Grapheme, start, width);
        return BehindBlanks(split > start ? split : Next(QTextBoundaryFinder::Grapheme, start));
    }

private:
    [[nodiscard]] qsizetype LastFitting(QTextBoundaryFinder::BoundaryType type, qsizetype start,
                                        Double width) const {
        QTextBoundaryFinder finder(type, FText);
        finder.setPosition(start);
        qsizetype last = start;
        for (qsizetype next = finder.toNextBoundary(); next >= 0; next = finder.toNextBoundary()) {
            if (Width(start, next) > width + Tolerance)
                break;
            last = next;
        }
        return last;
    }

    [[nodiscard]] qsizetype BehindBlanks(qsizetype at) const {
        while (at < FText.size() && FText[at].isSpace())
            ++at;
        return at;
    }

    [[nodiscard]] qsizetype Next(QTextBoundaryFinder::BoundaryType type, qsizetype start) const {
        QTextBoundaryFinder finder(type, FText);
        finder.setPosition(start);
        const qsizetype next = finder.toNextBoundary();
        return next > start ? next : FText.size();
    }

    /// Without the blanks at the end.
    [[nodiscard]] Double Width(qsizetype start, qsizetype end) const {
        while (end > start && FText[end - 1].isSpace())
            --end;
        return FEnds[size_t(end)] - FEnds[size_t(start)];
    }

    const string& FText;
    std::vector<Double> FEnds; ///< the width up to each character
};

QStringList ParagraphsOf(string text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    return text.split(u'\n');
}

string WithoutBlanksAtEnd(string line) {
    while (!line.isEmpty() && line.back().isSpace())
        line.chop(1);
    return line;
}

} // namespace

std::vector<TShapedLine> WrapText(const string& text, const TTextStyle& style, Double width, Double height) {
    std::vector<TShapedLine> lines;
    Double used = 0;
    const auto add = [&](const string& line) {
        lines.push_back(ShapeLine(line, style));
        used += lines.back().Height;
    };
    for (const string& paragraph : ParagraphsOf(text)) {
        const TParagraph measured(paragraph, style);
        qsizetype start = 0;
        do {
            const qsizetype end = start < paragraph.size() ? measured.LineEnd(start, width) : start;
            add(WithoutBlanksAtEnd(paragraph.mid(start, end - start)));
            start = end;
        } while (start < paragraph.size() && used < height);
        if (used >= height)
            break;
    }
    return lines;
}
