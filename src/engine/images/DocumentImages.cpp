#include "engine/images/DocumentImages.h"

#include "engine/content/FormContent.h"
#include "engine/images/ImageData.h"
#include "engine/images/ImageFile.h"
#include "engine/pdf/Flate.h"

#include <qpdf/Buffer.hh>

#include <QCryptographicHash>

#include <algorithm>

namespace {

QPDFObjectHandle NewInteger(qint64 value) {
    return QPDFObjectHandle::newInteger(value);
}

QPDFObjectHandle NewName(const char* name) {
    return QPDFObjectHandle::newName(name);
}

template <class TNumbers> QPDFObjectHandle NewReals(const TNumbers& numbers) {
    QPDFObjectHandle array = QPDFObjectHandle::newArray();
    for (const Double number : numbers) {
        std::string text;
        AppendNumber(text, number);
        array.appendItem(QPDFObjectHandle::newReal(text));
    }
    return array;
}

/// Bytes that somebody else owns, as data of a stream; `owner` lives as long as the stream.
std::shared_ptr<Buffer> Borrowed(const std::string& bytes, const std::shared_ptr<const TImageData>& owner) {
    auto* data = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())); // only ever read
    return {new Buffer(data, bytes.size()), [owner](Buffer* buffer) { delete buffer; }};
}

const char* FilterName(TImageFilter filter) {
    switch (filter) {
    case TImageFilter::Jpeg:
        return "/DCTDecode";
    case TImageFilter::Fax:
        return "/CCITTFaxDecode";
    case TImageFilter::Flate:
        break;
    }
    return "/FlateDecode";
}

QPDFObjectHandle DecodeParms(const TImageSamples& samples) {
    QPDFObjectHandle parms = QPDFObjectHandle::newDictionary();
    if (samples.Filter == TImageFilter::Fax) {
        parms.replaceKey("/K", NewInteger(-1));
        parms.replaceKey("/BlackIs1", QPDFObjectHandle::newBool(true));
        parms.replaceKey("/Columns", NewInteger(samples.Width));
        parms.replaceKey("/Rows", NewInteger(samples.Height));
        return parms;
    }
    if (!samples.PngRows)
        return QPDFObjectHandle::newNull();
    parms.replaceKey("/Predictor", NewInteger(15));
    parms.replaceKey("/Colors", NewInteger(samples.Components));
    parms.replaceKey("/BitsPerComponent", NewInteger(samples.Bits));
    parms.replaceKey("/Columns", NewInteger(samples.Width));
    return parms;
}

const char* DeviceSpace(int components) {
    return components == 1 ? "/DeviceGray" : components == 3 ? "/DeviceRGB" : "/DeviceCMYK";
}

QPDFObjectHandle CalibratedSpace(const TCalibration& calibration, int components) {
    QPDFObjectHandle dict = QPDFObjectHandle::newDictionary();
    dict.replaceKey("/WhitePoint", NewReals(calibration.WhitePoint));
    const std::vector<Double> gamma(size_t(components), calibration.Gamma);
    dict.replaceKey("/Gamma", components == 1 ? NewReals(gamma).getArrayItem(0) : NewReals(gamma));
    if (components == 3)
        dict.replaceKey("/Matrix", NewReals(calibration.Matrix));
    return QPDFObjectHandle::newArray({NewName(components == 3 ? "/CalRGB" : "/CalGray"), dict});
}

/// The operands of "cm" that put the unit square, in which an image stands upright as stored, into the
/// rectangle, so that the image stands there as its orientation says (EXIF 2.3, 4.6.4, tag 274).
std::array<Double, 6> Placement(int orientation, Double x, Double y, Double w, Double h) {
    switch (orientation) {
    case 2:
        return {-w, 0, 0, h, x + w, y};
    case 3:
        return {-w, 0, 0, -h, x + w, y + h};
    case 4:
        return {w, 0, 0, -h, x, y + h};
    case 5:
        return {0, -h, -w, 0, x + w, y + h};
    case 6:
        return {0, -h, w, 0, x, y + h};
    case 7:
        return {0, h, w, 0, x, y};
    case 8:
        return {0, h, -w, 0, x + w, y};
    default:
        return {w, 0, 0, h, x, y};
    }
}

} // namespace

void TDocumentImages::Draw(TFormContent& content, const TImageFile& image, Double x, Double y, Double width,
                           Double height) {
    const std::string name = content.UseXObject(XObjectOf(image));
    content.Op("q");
    for (const Double number : Placement(image.Data()->Orientation, x, y, width, height))
        content.Number(number);
    content.Op("cm").Raw(name).Op(" Do").Op("Q");
}

QPDFObjectHandle TDocumentImages::XObjectOf(const TImageFile& image) {
    if (const auto known = FImages.constFind(image.Digest()); known != FImages.constEnd())
        return *known;
    const std::shared_ptr<const TImageData>& data = image.Data();
    QPDFObjectHandle object = NewImage(data, *data);
    QPDFObjectHandle dict = object.getDict();
    dict.replaceKey("/ColorSpace", ColorSpaceOf(*data));
    if (data->Inverted) {
        QPDFObjectHandle decode = QPDFObjectHandle::newArray();
        for (int i = 0; i < data->Components * 2; ++i)
            decode.appendItem(NewInteger(i % 2 == 0 ? 1 : 0));
        dict.replaceKey("/Decode", decode);
    }
    if (data->PlainRgb)
        dict.replaceKey("/DecodeParms", QPDFObjectHandle::parse("<< /ColorTransform 0 >>"));
    AddMasks(dict, data);
    FImages.insert(image.Digest(), object);
    return object;
}

QPDFObjectHandle TDocumentImages::NewImage(const std::shared_ptr<const TImageData>& owner,
                                           const TImageSamples& samples) {
    QPDFObjectHandle image = FPdf.newStream();
    QPDFObjectHandle dict = image.getDict();
    dict.replaceKey("/Type", NewName("/XObject"));
    dict.replaceKey("/Subtype", NewName("/Image"));
    dict.replaceKey("/Width", NewInteger(samples.Width));
    dict.replaceKey("/Height", NewInteger(samples.Height));
    dict.replaceKey("/BitsPerComponent", NewInteger(samples.Bits));
    image.replaceStreamData(Borrowed(samples.Data, owner), NewName(FilterName(samples.Filter)),
                            DecodeParms(samples));
    if (samples.Bits == 16)
        FMinorVersion = std::max(FMinorVersion, 5);
    return image;
}

QPDFObjectHandle TDocumentImages::ColorSpaceOf(const TImageData& image) {
    const int components = image.Palette.empty() ? image.Components : 3;
    QPDFObjectHandle space = NewName(DeviceSpace(components));
    if (!image.Profile.empty())
        space = QPDFObjectHandle::newArray({NewName("/ICCBased"), ProfileOf(image)});
    else if (image.Calibration && components != 4)
        space = CalibratedSpace(*image.Calibration, components);
    if (image.Palette.empty())
        return space;
    const auto last = qint64(image.Palette.size() / 3) - 1;
    return QPDFObjectHandle::newArray(
        {NewName("/Indexed"), space, NewInteger(last), QPDFObjectHandle::newString(image.Palette)});
}

QPDFObjectHandle TDocumentImages::ProfileOf(const TImageData& image) {
    const QByteArray digest = QCryptographicHash::hash(
        QByteArray::fromRawData(image.Profile.data(), qsizetype(image.Profile.size())),
        QCryptographicHash::Blake2b_256);
    const auto known = FProfiles.constFind(digest);
    if (known != FProfiles.constEnd())
        return *known;
    const int components = image.Palette.empty() ? image.Components : 3;
    QPDFObjectHandle stream = FPdf.newStream();
    stream.getDict().replaceKey("/N", NewInteger(components));
    stream.getDict().replaceKey("/Alternate", NewName(DeviceSpace(components)));
    stream.replaceStreamData(Deflated(image.Profile), NewName("/FlateDecode"), QPDFObjectHandle::newNull());
    // The greatest version of profiles that each version of PDF knows (ISO 32000-1, table 67).
    FMinorVersion = std::max(FMinorVersion, quint8(image.Profile[8]) >= 4 ? 5 : 3);
    FProfiles.insert(digest, stream);
    return stream;
}

void TDocumentImages::AddMasks(QPDFObjectHandle dict, const std::shared_ptr<const TImageData>& image) {
    if (!image->ColorKey.empty()) {
        QPDFObjectHandle key = QPDFObjectHandle::newArray();
        for (const int bound : image->ColorKey)
            key.appendItem(NewInteger(bound));
        dict.replaceKey("/Mask", key);
    }
    if (!image->Alpha)
        return;
    QPDFObjectHandle mask = NewImage(image, *image->Alpha);
    mask.getDict().replaceKey("/ColorSpace", NewName("/DeviceGray"));
    dict.replaceKey("/SMask", mask);
    FMinorVersion = std::max(FMinorVersion, 4);
}
