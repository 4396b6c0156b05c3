#pragma once
// Small PDF files for tests and benchmarks, put together from their objects without any PDF library, so that
// what reads and writes them is not what made them.
#include "base/Text.h"

#include <QStringList>

struct TSampleOptions {
    QByteArray Title = {};       ///< information entry; none if empty
    QByteArray PageEntries = {}; ///< further entries of every page, as "/Rotate 90"
    QByteArray MediaBox = "0 0 595 842";
    bool Outlines = false;    ///< one item a page, "Outline 1"
    bool Links = false;       ///< on each page a link to the next
    string UserPassword = {}; ///< any of the two protects the file, with 256-bit AES
    string OwnerPassword = {};
    QStringList Restrictions = {}; ///< of the qpdf program, as "--modify=none"
};

/// The bytes of a PDF whose objects are numbered from 1; the first is the catalog.
[[nodiscard]] QByteArray PdfOf(const QList<QByteArray>& objects, const QByteArray& trailerEntries = {});
/// The body of a stream object.
[[nodiscard]] QByteArray StreamOf(const QByteArray& data, const QByteArray& entries = {});
/// The bytes of a PDF whose pages say "Page 1" and so on.
[[nodiscard]] QByteArray SamplePdf(int pages, const TSampleOptions& options = {});

/// The bytes of a page with a signature field that is signed, though not by anybody.
[[nodiscard]] QByteArray SignedPdf();

/// Writes such a file, protected if the options name a password. Replaces what is there.
void MakePdf(const string& path, int pages, const TSampleOptions& options = {});
