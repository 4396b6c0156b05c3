#include "engine/content/FormContent.h"

#include "engine/pdf/Flate.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

/// Whole numbers, which boxes mostly have, go without the detour by a stream of the C++ library: on a large
/// document with stamps that is a twentieth of the time.
QPDFObjectHandle BoxArray(const QPDFObjectHandle::Rectangle& box) {
    std::vector<QPDFObjectHandle> items;
    for (const double value : {box.llx, box.lly, box.urx, box.ury})
        items.push_back(value == std::floor(value) && std::abs(value) < 1e9
                            ? QPDFObjectHandle::newInteger(qint64(value))
                            : QPDFObjectHandle::newReal(value));
    return QPDFObjectHandle::newArray(items);
}

} // namespace

void AppendNumber(std::string& data, Double value) {
    if (!std::isfinite(value))
        value = 0;
    const qint64 scaled = std::llround(std::clamp(value, -1e9, 1e9) * 10'000);
    char digits[24];
    auto* const end = std::to_chars(digits, digits + sizeof digits, std::abs(scaled) / 10'000).ptr;
    if (scaled < 0)
        data += '-';
    qint64 fraction = std::abs(scaled) % 10'000;
    if (fraction == 0 || std::abs(scaled) >= 10'000)
        data.append(digits, end);
    if (fraction == 0)
        return;
    data += '.';
    for (qint64 place = 1000; fraction > 0; place /= 10) {
        data += char('0' + fraction / place);
        fraction %= place;
    }
}

TFormContent& TFormContent::Number(Double value) {
    AppendNumber(FData, value);
    FData += ' ';
    return *this;
}

TFormContent& TFormContent::Numbers(std::initializer_list<Double> values) {
    for (const Double value : values)
        Number(value);
    return *this;
}

TFormContent& TFormContent::Op(std::string_view text) {
    FData += text;
    FData += '\n';
    return *this;
}

TFormContent& TFormContent::Raw(std::string_view text) {
    FData += text;
    return *this;
}

std::string TFormContent::Use(TResources& resources, const char* prefix, const QPDFObjectHandle& object) {
    const auto known = std::find_if(resources.begin(), resources.end(),
                                    [&](const QPDFObjectHandle& one) { return one.isSameObjectAs(object); });
    const auto index = known - resources.begin();
    if (known == resources.end())
        resources.push_back(object);
    return prefix + std::to_string(index);
}

void TFormContent::AddTo(QPDFObjectHandle& resources, const char* kind, const char* prefix,
                         const TResources& objects) {
    if (objects.empty())
        return;
    QPDFObjectHandle dict = QPDFObjectHandle::newDictionary();
    for (size_t i = 0; i < objects.size(); ++i)
        dict.replaceKey(prefix + std::to_string(i), objects[i]);
    resources.replaceKey(kind, dict);
}

QPDFObjectHandle TFormContent::Resources() const {
    QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
    AddTo(resources, "/Font", "/F", FFonts);
    AddTo(resources, "/XObject", "/X", FXObjects);
    AddTo(resources, "/Shading", "/S", FShadings);
    AddTo(resources, "/ExtGState", "/G", FStates);
    return resources;
}

QPDFObjectHandle TFormContent::MakeForm(QPDF& pdf, const QPDFObjectHandle::Rectangle& box,
                                        const QPDFObjectHandle::Matrix& matrix) const {
    QPDFObjectHandle form = pdf.newStream();
    QPDFObjectHandle dict = form.getDict();
    dict.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dict.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dict.replaceKey("/BBox", BoxArray(box));
    if (!(matrix.a == 1 && matrix.b == 0 && matrix.c == 0 && matrix.d == 1 && matrix.e == 0 && matrix.f == 0))
        dict.replaceKey("/Matrix", QPDFObjectHandle::newArray(matrix));
    dict.replaceKey("/Resources", Resources());
    form.replaceStreamData(Deflated(FData), QPDFObjectHandle::newName("/FlateDecode"),
                           QPDFObjectHandle::newNull());
    return form;
}
