#pragma once
// The content of a form XObject while it is put together: its operators and the resources that they name.
#include "engine/pdf/Qpdf.h"

#include <string_view>
#include <vector>

class TFormContent {
public:
    /// Appends a number, to four places, which is finer than any device; then a blank.
    TFormContent& Number(Double value);
    TFormContent& Numbers(std::initializer_list<Double> values);
    /// Appends an operator or other text as it is, then a line feed.
    TFormContent& Op(std::string_view text);
    /// Appends text as it is.
    TFormContent& Raw(std::string_view text);

    /// Each makes a resource known to the form and gives the name to use it by, with its slash. The same
    /// object has the same name throughout.
    [[nodiscard]] std::string UseFont(const QPDFObjectHandle& font) { return Use(FFonts, "/F", font); }
    [[nodiscard]] std::string UseXObject(const QPDFObjectHandle& object) {
        return Use(FXObjects, "/X", object);
    }
    [[nodiscard]] std::string UseShading(const QPDFObjectHandle& object) {
        return Use(FShadings, "/S", object);
    }
    /// A graphics state dictionary.
    [[nodiscard]] std::string UseState(const QPDFObjectHandle& state) { return Use(FStates, "/G", state); }

    [[nodiscard]] bool IsEmpty() const { return FData.empty(); }
    [[nodiscard]] const std::string& Data() const { return FData; }
    /// The resource dictionary, direct.
    [[nodiscard]] QPDFObjectHandle Resources() const;

    /// The finished form: a compressed stream of `pdf` (ISO 32000-1, 8.10). `box` is [x0 y0 x1 y1].
    [[nodiscard]] QPDFObjectHandle MakeForm(QPDF& pdf, const QPDFObjectHandle::Rectangle& box,
                                            const QPDFObjectHandle::Matrix& matrix) const;

private:
    using TResources = std::vector<QPDFObjectHandle>;
    static std::string Use(TResources& resources, const char* prefix, const QPDFObjectHandle& object);
    static void AddTo(QPDFObjectHandle& resources, const char* kind, const char* prefix,
                      const TResources& objects);

    std::string FData;
    TResources FFonts;
    TResources FXObjects;
    TResources FShadings;
    TResources FStates;
};

/// Appends a number as TFormContent::Number does, without the blank.
void AppendNumber(std::string& data, Double value);
