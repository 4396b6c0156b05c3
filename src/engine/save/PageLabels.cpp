#include "engine/save/PageLabels.h"

#include <qpdf/QPDFPageLabelDocumentHelper.hh>

namespace {

/// Whether `label` is what the run that began with `first`, `distance` pages before, gives anyway.
bool Continues(QPDFObjectHandle first, QPDFObjectHandle label, qint64 distance) {
    const auto start = [](QPDFObjectHandle dict) {
        QPDFObjectHandle st = dict.getKey("/St");
        return st.isInteger() ? st.getIntValue() : 1;
    };
    const bool numbered = first.hasKey("/S");
    return first.getKey("/S").unparse() == label.getKey("/S").unparse() &&
           first.getKey("/P").unparse() == label.getKey("/P").unparse() &&
           (!numbered || start(first) + distance == start(label));
}

} // namespace

TPageLabels::TPageLabels(const TDocumentCore& core) {
    QPDFPageLabelDocumentHelper helper(*core.Source->Pdf);
    if (!helper.hasPageLabels())
        return;
    try {
        Note(helper, core);
    } catch (const std::exception&) {
        FLabels.clear(); // a damaged tree stays as it is
    }
}

void TPageLabels::Note(QPDFPageLabelDocumentHelper& helper, const TDocumentCore& core) {
    for (const auto& item : core.Pages.Items()) {
        const int index = item->Object().FileIndex;
        QPDFObjectHandle label = index < 0 ? QPDFObjectHandle::newNull() : helper.getLabelForPage(index);
        FLabels.push_back(label.isDictionary() ? label : QPDFObjectHandle::newDictionary());
    }
}

void TPageLabels::Write(TDocumentCore& core) const {
    if (FLabels.empty())
        return;
    QPDFObjectHandle numbers = QPDFObjectHandle::newArray();
    size_t first = 0;
    for (size_t i = 0; i < FLabels.size(); ++i) {
        if (i > 0 && Continues(FLabels[first], FLabels[i], qint64(i - first)))
            continue;
        first = i;
        numbers.appendItem(QPDFObjectHandle::newInteger(qint64(i)));
        numbers.appendItem(FLabels[i]);
    }
    QPDFObjectHandle tree = QPDFObjectHandle::newDictionary();
    tree.replaceKey("/Nums", numbers);
    core.Source->Pdf->getRoot().replaceKey("/PageLabels", tree);
}
