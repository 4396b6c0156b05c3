#include "engine/save/InfoWriter.h"

#include "engine/pdf/Dates.h"
#include "engine/pdf/Metadata.h"
#include "engine/pdf/Xmp.h"

#include <QMetaEnum>

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

/// PDF 2.0 and PDF/A-4 tell everything by the packet (ISO 32000-2, 14.3.3; ISO 19005-4, 6.1.3).
bool DoesWithoutInfo(const TPDFSource& source) {
    return !InfoOf(source).isDictionary() && (IsPdf2(*source.Pdf) || PdfAPart(*source.Pdf) >= 4);
}

void WriteInfo(TDocumentCore& core, const QDateTime& now) {
    QPDFObjectHandle info = WritableInfo(*core.Source->Pdf);
    for (const auto& [key, value] : core.Changes.Info) {
        if (value.isEmpty())
            info.removeKey(InfoKey(key));
        else
            info.replaceKey(InfoKey(key), NewText(value));
    }
    info.replaceKey("/ModDate", QPDFObjectHandle::newString(PdfDate(now)));
    if (!core.Source->Input && !info.hasKey("/CreationDate"))
        info.replaceKey("/CreationDate", QPDFObjectHandle::newString(PdfDate(now)));
}

void WriteXmp(TDocumentCore& core, const NarrowString& packet) {
    QPDF& pdf = *core.Source->Pdf;
    QPDFObjectHandle root = pdf.getRoot();
    if (packet.isEmpty())
        return root.removeKey("/Metadata");
    QPDFObjectHandle stream = root.getKey("/Metadata");
    core.RequireVersion(4);
    if (!stream.isStream()) {
        stream = pdf.newStream();
        root.replaceKey("/Metadata", stream);
    }
    stream.getDict().replaceKey("/Type", QPDFObjectHandle::newName("/Metadata"));
    stream.getDict().replaceKey("/Subtype", QPDFObjectHandle::newName("/XML"));
    // Not compressed: programs look for the packet without reading the PDF around it.
    stream.replaceStreamData(packet.toStdString(), QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull());
}

/// Information entries and packet tell the same; the packet is the one that newer readers show. `makes` says
/// whether one is made for them where there is none. False if a packet can't take them in.
bool KeepXmpInStep(TDocumentCore& core, const QDateTime& now, bool makes) {
    const bool given = core.Changes.Xmp.has_value();
    NarrowString packet = given ? *core.Changes.Xmp : ReadXmp(*core.Source->Pdf);
    if (packet.isEmpty() && makes)
        packet = EmptyXmp();
    if (packet.isEmpty()) {
        if (given)
            WriteXmp(core, packet);
        return true;
    }
    const std::optional<NarrowString> edited = UpdateXmp(packet, core.Changes.Info, now);
    if (!edited)
        core.Warnings.Add(TWarningKind::MetadataUnreadable,
                          QStringLiteral("The XMP metadata can't be read and was left as it is."));
    if (edited || given)
        WriteXmp(core, edited.value_or(packet));
    return edited.has_value();
}

/// The version of PDF 1 that knows the mode and the layout (tables 28 and 29).
int VersionOf(TPDFPageMode mode) {
    return mode == TPDFPageMode::pmUseAttachments ? 6 : mode == TPDFPageMode::pmUseOC ? 5 : 0;
}
int VersionOf(TPDFPageLayout layout) {
    return layout == TPDFPageLayout::plTwoPageLeft || layout == TPDFPageLayout::plTwoPageRight ? 5 : 0;
}

void WriteView(TDocumentCore& core) {
    QPDFObjectHandle root = core.Root();
    if (const auto mode = core.Changes.PageMode) {
        root.replaceKey("/PageMode", NameOf(*mode));
        core.RequireVersion(VersionOf(*mode));
    }
    if (const auto layout = core.Changes.PageLayout) {
        root.replaceKey("/PageLayout", NameOf(*layout));
        core.RequireVersion(VersionOf(*layout));
    }
}

} // namespace

void ApplyInfo(TDocumentCore& core) {
    const QDateTime now = QDateTime::currentDateTime();
    const bool byPacketAlone = DoesWithoutInfo(*core.Source);
    const bool kept = KeepXmpInStep(core, now, byPacketAlone && !core.Changes.Info.empty());
    if (!byPacketAlone || (!kept && !core.Changes.Info.empty())) // told somewhere, if not where it should be
        WriteInfo(core, now);
    WriteView(core);
    core.Source->XmpInfo.reset();
    core.Changes.Info.clear();
    core.Changes.Xmp.reset();
    core.Changes.PageMode.reset();
    core.Changes.PageLayout.reset();
}

string ReadInfo(TPDFSource& source, const NarrowString& key) {
    QPDFObjectHandle info = InfoOf(source);
    if (info.isDictionary())
        return TextOf(Entry(info, InfoKey(key).c_str()));
    if (!source.XmpInfo)
        source.XmpInfo = InfoOfXmp(ReadXmp(*source.Pdf));
    const auto found = source.XmpInfo->find(key);
    return found == source.XmpInfo->end() ? string() : found->second;
}

TPDFPageMode ReadPageMode(const TPDFSource& source) {
    return ValueOf<TPDFPageMode>(Entry(source.Pdf->getRoot(), "/PageMode"), "pm");
}

TPDFPageLayout ReadPageLayout(const TPDFSource& source) {
    return ValueOf<TPDFPageLayout>(Entry(source.Pdf->getRoot(), "/PageLayout"), "pl");
}
