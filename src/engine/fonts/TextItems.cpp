#include "engine/fonts/TextItems.h"

#include <fribidi.h>
#include <hb.h>

namespace {

constexpr char32_t JoinedToNext = 0x200D; // zero width joiner

struct TCharacter {
    char32_t Code = 0;
    quint32 Start = 0;
    hb_script_t Script = HB_SCRIPT_COMMON;
    FriBidiLevel Level = 0;
    const TFacePtr* Face = nullptr;
};
using TCharacters = std::vector<TCharacter>;

string WithoutControls(const string& text) {
    constexpr char16_t WordJoiner = 0x2060; // invisible, and no letter of either direction
    string shown = text;
    for (qsizetype i = 0; i < text.size(); ++i)
        if (IsControl(text[i]))
            shown[i] = text[i] == u'\t' ? u' ' : WordJoiner;
    return shown;
}

/// Letters that need no analysis: from left to right, and all in the main face. Most lines are such.
bool IsPlainLatin(const string& text, TFontChain& fonts) {
    constexpr char16_t SoftHyphen = 0xAD;
    constexpr char16_t EndOfLatin = 0x250;
    const TFacePtr& main = fonts.Main();
    for (const QChar& c : text)
        if (c >= EndOfLatin || c == SoftHyphen || &fonts.FaceFor(QStringView(&c, 1)) != &main)
            return false;
    return true;
}

TCharacters CharactersOf(const string& text) {
    TCharacters characters;
    characters.reserve(size_t(text.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        TCharacter character{text[i].unicode(), quint32(i)};
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            character.Code = QChar::surrogateToUcs4(text[i], text[i + 1]);
        else if (text[i].isSurrogate())
            character.Code = QChar::ReplacementCharacter;
        if (character.Code > 0xFFFF)
            ++i;
        characters.push_back(character);
    }
    return characters;
}

void AddLevels(TCharacters& characters) {
    std::vector<FriBidiChar> codes;
    for (const TCharacter& character : characters)
        codes.push_back(character.Code);
    const auto count = FriBidiStrIndex(codes.size());
    std::vector<FriBidiCharType> types(codes.size());
    std::vector<FriBidiBracketType> brackets(codes.size());
    std::vector<FriBidiLevel> levels(codes.size());
    fribidi_get_bidi_types(codes.data(), count, types.data());
    fribidi_get_bracket_types(codes.data(), count, types.data(), brackets.data());
    FriBidiParType direction = FRIBIDI_PAR_ON;
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &direction,
                                            levels.data()) == 0)
        return; // out of memory: left to right
    // Blanks at the line's end stand at its end (UAX #9, L1).
    for (size_t i = codes.size(); i-- > 0 && FRIBIDI_IS_EXPLICIT_OR_BN_OR_WS(types[i]);)
        levels[i] = FRIBIDI_DIR_TO_LEVEL(direction);
    for (size_t i = 0; i < codes.size(); ++i)
        characters[i].Level = levels[i];
}

/// Characters of no script of their own take that of their neighbours.
void AddScripts(TCharacters& characters) {
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    const auto isReal = [](hb_script_t script) {
        return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED && script != HB_SCRIPT_UNKNOWN;
    };
    hb_script_t current = HB_SCRIPT_COMMON;
    for (TCharacter& character : characters) {
        character.Script = hb_unicode_script(unicode, character.Code);
        if (isReal(character.Script) && !isReal(current))
            for (TCharacter* leading = characters.data(); leading != &character; ++leading)
                leading->Script = character.Script;
        if (isReal(character.Script))
            current = character.Script;
        else
            character.Script = current;
    }
}

bool BelongsToPrevious(char32_t previous, char32_t c) {
    constexpr char32_t FirstSkinTone = 0x1F3FB;
    constexpr char32_t LastSkinTone = 0x1F3FF;
    constexpr char32_t NonJoiner = 0x200C;
    return QChar::isMark(c) || c == JoinedToNext || c == NonJoiner || previous == JoinedToNext ||
           (c >= FirstSkinTone && c <= LastSkinTone);
}

void AddFaces(TCharacters& characters, const string& text, TFontChain& fonts) {
    for (size_t i = 0; i < characters.size();) {
        size_t end = i + 1;
        while (end < characters.size() && BelongsToPrevious(characters[end - 1].Code, characters[end].Code))
            ++end;
        const TFacePtr* face = nullptr;
        if (i > 0 && NeedsNoGlyph(characters[i].Code)) {
            face = characters[i - 1].Face;
        } else {
            const qsizetype stop = end < characters.size() ? characters[end].Start : text.size();
            face = &fonts.FaceFor(QStringView(text).sliced(characters[i].Start, stop - characters[i].Start));
        }
        for (; i < end; ++i)
            characters[i].Face = face;
    }
}

/// Blanks between words of one fallback face are taken from it too, so that it needn't be changed twice.
void JoinWords(TCharacters& characters) {
    for (size_t i = 1; i < characters.size(); ++i) {
        const TFacePtr* before = characters[i - 1].Face;
        if (characters[i].Code != U' ' || characters[i].Face == before || (*before)->SpaceGlyph() == 0)
            continue;
        size_t next = i;
        while (next < characters.size() && characters[next].Code == U' ')
            ++next;
        if (next < characters.size() && characters[next].Face == before)
            for (; i < next; ++i)
                characters[i].Face = before;
    }
}

std::vector<TTextItem> ItemsOf(const TCharacters& characters, const string& text) {
    std::vector<TTextItem> items;
    const TCharacter* previous = nullptr;
    for (const TCharacter& character : characters) {
        if (!previous || character.Face != previous->Face || character.Script != previous->Script ||
            character.Level != previous->Level)
            items.push_back(
                {character.Start, 0, *character.Face, quint32(character.Script), quint8(character.Level)});
        previous = &character;
    }
    for (size_t i = 0; i < items.size(); ++i)
        items[i].End = i + 1 < items.size() ? items[i + 1].Start : quint32(text.size());
    return items;
}

/// UAX #9, L2, on whole items.
void OrderVisually(std::vector<TTextItem>& items) {
    quint8 highest = 0;
    for (const TTextItem& item : items)
        highest = std::max(highest, item.Level);
    for (int level = highest; level > 0; --level)
        for (auto first = items.begin(); first != items.end();) {
            const auto isInside = [level](const TTextItem& item) { return item.Level >= level; };
            first = std::find_if(first, items.end(), isInside);
            const auto last = std::find_if_not(first, items.end(), isInside);
            std::reverse(first, last);
            first = last;
        }
}

} // namespace

TItemizedText Itemize(const string& text, TFontChain& fonts) {
    if (text.isEmpty())
        return {};
    if (IsPlainLatin(text, fonts) && std::none_of(text.begin(), text.end(), IsControl))
        return {text, {{0, quint32(text.size()), fonts.Main(), quint32(HB_SCRIPT_LATIN), 0}}};
    TItemizedText result{WithoutControls(text), {}};
    TCharacters characters = CharactersOf(result.Shown);
    AddLevels(characters);
    AddScripts(characters);
    AddFaces(characters, result.Shown, fonts);
    JoinWords(characters);
    result.Items = ItemsOf(characters, result.Shown);
    OrderVisually(result.Items);
    return result;
}
