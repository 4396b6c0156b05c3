#include "base/Printable.h"

#include <algorithm>

string Printable(const string& text) {
    string plain = text;
    const auto controls = [](QChar c) {
        const QChar::Category category = c.category();
        return category == QChar::Other_Control || category == QChar::Separator_Line ||
               category == QChar::Separator_Paragraph;
    };
    std::replace_if(plain.begin(), plain.end(), controls, QChar(u'?'));
    return plain;
}
