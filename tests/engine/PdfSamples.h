#pragma once
// Small files that claim to be something, and the catalog of one.
#include "engine/PdfJudges.h"

/// One page (object 3) below a catalog with these entries; further objects are numbered from 4.
inline QByteArray PdfWithCatalog(const QByteArray& entries, const QList<QByteArray>& objects = {},
                                 const QByteArray& version = "1.5") {
    return PdfOf(QList<QByteArray>{"<< /Type /Catalog /Pages 2 0 R " + entries + " >>",
                                   "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                                   "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200] >>"} +
                 objects)
        .replace("%PDF-1.5", "%PDF-" + version);
}

/// A packet with these properties.
inline QByteArray XmpPacket(const QByteArray& properties) {
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">" +
           properties + "</rdf:RDF></x:xmpmeta>\n<?xpacket end=\"w\"?>" + QByteArray(100, ' ');
}

/// The stream of a packet that claims a part of PDF/A.
inline QByteArray PdfAMetadata(int part) {
    return StreamOf(XmpPacket("<rdf:Description rdf:about=\"\" "
                              "xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\"><pdfaid:part>" +
                              QByteArray::number(part) + "</pdfaid:part></rdf:Description>"),
                    "/Type /Metadata /Subtype /XML");
}

inline QJsonObject Catalog(const string& path) {
    for (const QJsonValue& object : PdfObjects(path))
        if (const QJsonObject dict = object.toObject()["value"].toObject(); dict["/Type"] == "/Catalog")
            return dict;
    return {};
}
