#include "apps/ctl/lint/LintedFile.h"

#include "xml/XmlMarks.h"

#include <QFile>

#include <algorithm>

TLintedFile::TLintedFile(const string& path, QObject& object) : FPath(path) {
    try {
        Read(object);
    } catch (const Exception& e) { // it names the place itself
        Fault(0, e.Message());
    }
}

void TLintedFile::Read(QObject& object) {
    const string quoted = u'"' + FPath + u'"';
    QFile file(FPath);
    if (!file.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("%1: %2").arg(quoted, file.errorString()));
    CheckXmlSize(file.size(), quoted);
    FDocument = ParseXml(file.readAll(), quoted);
    const TReview review{
        .Fault = [this](int line, const string& what) { Fault(line, what); },
        .Read = [this](const QObject& read, const TXmlElement& element) { FElements[&read] = &element; }};
    ReviewDocument(object, FDocument, XmlMarks::RootName(*object.metaObject()), review);
    FRead = true;
}

QStringList TLintedFile::Faults() const {
    std::vector<TFault> sorted = FFaults;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const TFault& a, const TFault& b) { return a.Line < b.Line; });
    QStringList texts;
    for (const TFault& fault : sorted)
        texts += fault.Line == 0 ? fault.What
                                 : QStringLiteral("%1, line %2: %3")
                                       .arg(FDocument.Source, QString::number(fault.Line), fault.What);
    return texts;
}

const TXmlElement* ChildOf(const TXmlElement& element, const string& name) {
    const auto found = std::find_if(element.Children.begin(), element.Children.end(),
                                    [&](const TXmlElement& child) { return SameText(child.Name, name); });
    return found == element.Children.end() ? nullptr : &*found;
}

int LineOf(const TXmlElement& element, const QStringList& path) {
    const TXmlElement* child = path.isEmpty() ? nullptr : ChildOf(element, path.first());
    return child ? LineOf(*child, path.mid(1)) : element.Line;
}
