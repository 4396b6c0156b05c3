#include "engine/pdf/Metadata.h"

#include "engine/pdf/Xmp.h"

#include <qpdf/Buffer.hh>

NarrowString ReadXmp(QPDF& pdf) {
    QPDFObjectHandle stream = Entry(pdf.getRoot(), "/Metadata");
    if (!stream.isStream())
        return {};
    try {
        const auto data = stream.getStreamData(qpdf_dl_specialized);
        return {reinterpret_cast<const char*>(data->getBuffer()), qsizetype(data->getSize())};
    } catch (const std::exception&) {
        return {}; // a packet that can't be decoded is left alone
    }
}

int PdfAPart(QPDF& pdf) {
    return PdfAPartOf(ReadXmp(pdf));
}

bool IsPdf2(QPDF& pdf) {
    QPDFObjectHandle version = Entry(pdf.getRoot(), "/Version");
    const auto isNew = [](const std::string& number) { return !number.empty() && number[0] >= '2'; };
    return isNew(pdf.getPDFVersion()) || (version.isName() && isNew(version.getName().substr(1)));
}
