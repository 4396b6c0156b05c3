#include "engine/fonts/FontChain.h"

#include "base/Exceptions.h"

#include <fontconfig/fontconfig.h>

namespace {

struct TFree {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};
using TPattern = std::unique_ptr<FcPattern, TFree>;

bool WantsItalic(int style) {
    return (style & 2) != 0;
}

TPattern PatternOf(const string& family, int style) {
    TPattern pattern(FcPatternCreate());
    const QByteArray name = family.isEmpty() ? QByteArrayLiteral("Arial") : family.toUtf8();
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(name.constData()));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, (style & 1) != 0 ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, WantsItalic(style) ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    return pattern;
}

bool Is(FcPattern* font, const char* property, FcBool fallback) {
    FcBool value = fallback;
    FcPatternGetBool(font, property, 0, &value);
    return value != FcFalse;
}

QByteArray TextOfProperty(FcPattern* font, const char* property) {
    FcChar8* value = nullptr;
    if (FcPatternGetString(font, property, 0, &value) != FcResultMatch)
        return {};
    return reinterpret_cast<const char*>(value);
}

/// Fonts of outlines in the file formats that can be shaped and embedded.
bool IsScalable(FcPattern* font) {
    const QByteArray format = TextOfProperty(font, FC_FONTFORMAT);
    return Is(font, FC_OUTLINE, FcTrue) && !Is(font, FC_COLOR, FcFalse) &&
           (format == "TrueType" || format == "CFF");
}

} // namespace

struct TFontChain::TFontConfig {
    TPattern Wanted;
    std::unique_ptr<FcFontSet, TFree> Fonts;
    bool Italic = false;
};

struct TFontChain::TCandidate {
    FcPattern* Font = nullptr; ///< held by the set
    const FcCharSet* Characters = nullptr;
    bool IsLoaded = false;
    TFacePtr Face = nullptr; ///< null if loading has failed
};

TFontChain& TFontChain::Of(const string& family, int style) {
    // A script can name any number of families; a page of text names few.
    constexpr qsizetype MostKept = 64;
    thread_local QHash<std::pair<string, int>, std::shared_ptr<TFontChain>> chains;
    const std::pair key(family, style & 3);
    const auto known = chains.constFind(key);
    if (known != chains.constEnd())
        return **known;
    if (chains.size() >= MostKept)
        chains.clear();
    return **chains.insert(key, std::make_shared<TFontChain>(family, style & 3));
}

TFontChain::TFontChain(const string& family, int style) : FConfig(std::make_unique<TFontConfig>()) {
    FConfig->Italic = WantsItalic(style);
    FConfig->Wanted = PatternOf(family, style);
    FcResult result = FcResultNoMatch;
    FConfig->Fonts.reset(FcFontSort(nullptr, FConfig->Wanted.get(), /*trim*/ FcFalse, nullptr, &result));
    for (int i = 0; FConfig->Fonts && i < FConfig->Fonts->nfont && FCandidates.size() < 0xFFFE; ++i) {
        FcPattern* font = FConfig->Fonts->fonts[i];
        FcCharSet* characters = nullptr;
        if (IsScalable(font) && FcPatternGetCharSet(font, FC_CHARSET, 0, &characters) == FcResultMatch)
            FCandidates.push_back({font, characters});
    }
    while (FMain < FCandidates.size() && !Load(FCandidates[FMain]))
        ++FMain;
    if (FMain == FCandidates.size())
        throw Exception(QStringLiteral("Text can't be written: no font that can be embedded is installed."));
}

TFontChain::~TFontChain() = default;

const TFacePtr& TFontChain::Main() const {
    return FCandidates[FMain].Face;
}

bool TFontChain::Load(TCandidate& candidate) const {
    if (candidate.IsLoaded)
        return candidate.Face != nullptr;
    candidate.IsLoaded = true;
    // Rules of the configuration settle the axes of a variable font.
    const TPattern font(FcFontRenderPrepare(nullptr, FConfig->Wanted.get(), candidate.Font));
    TFontSource source;
    source.File = TextOfProperty(font.get(), FC_FILE);
    FcPatternGetInteger(font.get(), FC_INDEX, 0, &source.Index);
    source.Variations = TextOfProperty(font.get(), FC_FONT_VARIATIONS);
    int slant = FC_SLANT_ROMAN;
    FcPatternGetInteger(candidate.Font, FC_SLANT, 0, &slant);
    source.Slanted = FConfig->Italic && slant == FC_SLANT_ROMAN;
    candidate.Face = TFontFace::Get(source);
    return candidate.Face != nullptr;
}

size_t TFontChain::Search(const std::u32string& characters) {
    const auto has = [](const TCandidate& candidate, char32_t c) {
        return NeedsNoGlyph(c) || FcCharSetHasChar(candidate.Characters, c) != FcFalse;
    };
    for (size_t i = FMain; i < FCandidates.size(); ++i) {
        TCandidate& candidate = FCandidates[i];
        if (std::all_of(characters.begin(), characters.end(),
                        [&](char32_t c) { return has(candidate, c); }) &&
            Load(candidate))
            return i;
    }
    return characters.size() > 1 ? Search(characters.substr(0, 1)) : FMain;
}

size_t TFontChain::IndexFor(QStringView cluster) {
    constexpr qsizetype MostKept = 4096;
    const bool isOne = cluster.size() == 1 || (cluster.size() == 2 && cluster[0].isHighSurrogate());
    const auto search = [&] { return quint16(Search(cluster.toString().toStdU32String()) + 1); };
    if (isOne) {
        const char32_t c =
            cluster.size() == 1 ? cluster[0].unicode() : QChar::surrogateToUcs4(cluster[0], cluster[1]);
        quint16& index = FBlocks[c >> 8][c & 0xFF];
        if (index == 0)
            index = search();
        return index - 1U;
    }
    if (FClusters.size() >= MostKept)
        FClusters.clear();
    quint16& index = FClusters[cluster.toString()];
    if (index == 0)
        index = search();
    return index - 1U;
}

const TFacePtr& TFontChain::FaceFor(QStringView cluster) {
    return FCandidates[IndexFor(cluster)].Face;
}

bool NeedsNoGlyph(char32_t character) {
    constexpr char32_t NonBreakingHyphen = 0x2011;
    return QChar::category(character) == QChar::Other_Format ||
           (QChar::category(character) == QChar::Separator_Space && character != U' ') ||
           (character >= 0xFE00 && character <= 0xFE0F) || (character >= 0xE0100 && character <= 0xE01EF) ||
           character == NonBreakingHyphen;
}
