#include "engine/InfoWriter.h"

#include "engine/Xmp.h"

#include <QMetaEnum>

#include <qpdf/Buffer.hh>

#include <cstdio>
#include <cstdlib>

namespace {

/// The value names of the standard are ours without their two letters in front.
template <class T> QPDFObjectHandle NameOf(T value) {
    const QByteArray key = QMetaEnum::fromType<T>().valueToKey(int(value));
    return QPDFObjectHandle::newName(NarrowString("/" + key.mid(2)).toStdString());
}

template <class T> T ValueOf(QPDFObjectHandle name, const char* prefix) {
    if (!name.isName())
        return T{};
    const QByteArray key = prefix + QByteArray::fromStdString(name.getName().substr(1));
    const int value = QMetaEnum::fromType<T>().keyToValue(key.constData());
    return value < 0 ? T{} : T(value);
}

QPDFObjectHandle InfoOf(const TPDFSource& source) {
    return Entry(source.Pdf->getTrailer(), "/Info");
}

std::string InfoKey(const NarrowString& key) {
    return NarrowString("/" + key).toStdString();
}

/// The dictionary to write to; one that is missing or nonsense is made.
QPDFObjectHandle WritableInfo(QPDF& pdf) {
    QPDFObjectHandle info = Entry(pdf.getTrailer(), "/Info");
    if (info.isDictionary())
        return info;
    info = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
    pdf.getTrailer().replaceKey("/Info", info);
    return info;
}

void WriteXmp(TDocumentCore& core, const NarrowString& packet) {
    QPDF& pdf = *core.Source->Pdf;
    QPDFObjectHandle root = pdf.getRoot();
    if (packet.isEmpty())
        return root.removeKey("/Metadata");
    QPDFObjectHandle stream = root.getKey("/Metadata");
    if (!stream.isStream()) {
        stream = pdf.newStream();
        root.replaceKey("/Metadata", stream);
    }
    stream.getDict().replaceKey("/Type", QPDFObjectHandle::newName("/Metadata"));
    stream.getDict().replaceKey("/Subtype", QPDFObjectHandle::newName("/XML"));
    // Not compressed: programs look for the packet without reading the PDF around it.
    stream.replaceStreamData(packet.toStdString(), QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull());
}

/// Information entries and packet tell the same; the packet is the one that newer readers show.
void KeepXmpInStep(TDocumentCore& core, const QDateTime& now) {
    const bool given = core.Changes.Xmp.has_value();
    const NarrowString packet = given ? *core.Changes.Xmp : ReadXmp(*core.Source);
    if (packet.isEmpty()) {
        if (given)
            WriteXmp(core, packet);
        return;
    }
    const std::optional<NarrowString> edited = UpdateXmp(packet, core.Changes.Info, now);
    if (!edited)
        core.Warnings.Add(TWarningKind::MetadataUnreadable,
                          QStringLiteral("The XMP metadata can't be read and was left as it is."));
    if (edited || given)
        WriteXmp(core, edited.value_or(packet));
}

} // namespace

void ApplyInfo(TDocumentCore& core) {
    QPDF& pdf = *core.Source->Pdf;
    const QDateTime now = QDateTime::currentDateTime();
    QPDFObjectHandle info = WritableInfo(pdf);
    for (const auto& [key, value] : core.Changes.Info) {
        if (value.isEmpty())
            info.removeKey(InfoKey(key));
        else
            info.replaceKey(InfoKey(key), NewText(value));
    }
    info.replaceKey("/ModDate", QPDFObjectHandle::newString(PdfDate(now)));
    if (!core.Source->Input && !info.hasKey("/CreationDate"))
        info.replaceKey("/CreationDate", QPDFObjectHandle::newString(PdfDate(now)));
    KeepXmpInStep(core, now);
    if (core.Changes.PageMode)
        pdf.getRoot().replaceKey("/PageMode", NameOf(*core.Changes.PageMode));
    if (core.Changes.PageLayout)
        pdf.getRoot().replaceKey("/PageLayout", NameOf(*core.Changes.PageLayout));
    core.Changes.Info.clear();
    core.Changes.Xmp.reset();
    core.Changes.PageMode.reset();
    core.Changes.PageLayout.reset();
}

string ReadInfo(const TPDFSource& source, const NarrowString& key) {
    return TextOf(Entry(InfoOf(source), InfoKey(key).c_str()));
}

NarrowString ReadXmp(const TPDFSource& source) {
    QPDFObjectHandle stream = Entry(source.Pdf->getRoot(), "/Metadata");
    if (!stream.isStream())
        return {};
    try {
        const auto data = stream.getStreamData(qpdf_dl_specialized);
        return {reinterpret_cast<const char*>(data->getBuffer()), qsizetype(data->getSize())};
    } catch (const std::exception&) {
        return {}; // a packet that can't be decoded is left alone
    }
}

TPDFPageMode ReadPageMode(const TPDFSource& source) {
    return ValueOf<TPDFPageMode>(Entry(source.Pdf->getRoot(), "/PageMode"), "pm");
}

TPDFPageLayout ReadPageLayout(const TPDFSource& source) {
    return ValueOf<TPDFPageLayout>(Entry(source.Pdf->getRoot(), "/PageLayout"), "pl");
}

std::string PdfDate(const QDateTime& time) {
    const int offset = time.offsetFromUtc() / 60;
    const QDate d = time.date();
    const QTime t = time.time();
    char text[40];
    std::snprintf(text, sizeof text, "D:%04d%02d%02d%02d%02d%02d%c%02d'%02d'", d.year(), d.month(), d.day(),
                  t.hour(), t.minute(), t.second(), offset < 0 ? '-' : '+', std::abs(offset) / 60,
                  std::abs(offset) % 60);
    return text;
}
