#pragma once
// An open PDF file: libqpdf's object for it, our input and the pages found in it.
#include "engine/file/FileInput.h"
#include "engine/file/Warnings.h"
#include "engine/pdf/Errors.h"
#include "engine/pdf/PageWalk.h"

#include <map>

struct TPDFSource {
    string Path;
    NarrowString Password;             // the bytes that opened the file
    std::shared_ptr<TFileInput> Input; // null for a document that was made here
    std::shared_ptr<QPDF> Pdf;
    TPageWalk Walk;
    TPDFWarnings Warnings;                                 // collected so far
    std::optional<std::map<NarrowString, string>> XmpInfo; // what the packet tells, once somebody asked
    std::vector<std::shared_ptr<const TPDFSource>> Kept;   // sources of copied pages, whose data is read late

    TPDFSource() = default;
    TPDFSource(const TPDFSource&) = delete;
    /// The objects of a large document are freed on a thread of their own.
    ~TPDFSource();

    /// Moves libqpdf's warnings to ours.
    void CollectWarnings();
};

using TPDFSourcePtr = std::shared_ptr<TPDFSource>;

/// Bytes of its file that are there; 0 for a document that was made here.
[[nodiscard]] qint64 StoredBytes(const TPDFSource& source);

/// Opens a file, or takes the one that is open as `descriptor` under the name `path`. Raises EPDFError, whose
/// kind says what is wrong, or EFileError.
[[nodiscard]] TPDFSourcePtr OpenSource(const string& path, const NarrowString& password,
                                       int descriptor = TFileInput::NotOpen);

/// A source without file and without pages.
[[nodiscard]] TPDFSourcePtr NewSource();

/// libqpdf's exception as one of ours; `doing` reads as in "Cannot open".
[[nodiscard]] EPDFError Translated(const std::exception& e, const string& doing, const string& path);
