#include "actions/ActionList.h"

#include "xml/Xmlserial.h"

#include <QBuffer>

Cardinal TPDFActions::Execute(TZQPDFDocument& Document) {
    for (int i = 0; i < Count(); ++i)
        if (const Cardinal result = (*this)[i]->Execute(Document); result != 0)
            return result;
    return 0;
}

Integer TPDFActions::IndexOf(const QMetaObject& AClass) const {
    for (int i = 0; i < Count(); ++i)
        if (ItemAt(i)->metaObject() == &AClass)
            return i;
    return -1;
}

TPDFActionList::TPDFActionList() : FActions(new TPDFActions) {}
TPDFActionList::~TPDFActionList() {
    delete FActions;
}

Cardinal TPDFActionList::Execute(TZQPDFDocument& Document) {
    return FActions->Execute(Document);
}

Cardinal TPDFActionList::Execute(const QList<TZQPDFDocument*>& Documents) {
    for (TZQPDFDocument* document : Documents)
        if (const Cardinal result = Execute(*document); result != 0)
            return result;
    return 0;
}

Integer TPDFActionList::IndexOf(const QMetaObject& AClass) const {
    return FActions->IndexOf(AClass);
}

void TPDFActionList::Assign(const TPDFActionList& Source) {
    FActions->Clear();
    QBuffer stream;
    stream.open(QIODevice::ReadWrite);
    XMLSerialize(Source, stream, QString());
    stream.seek(0);
    XMLDeserialize(*this, stream, QString());
}
