#include "editor/style/JSMemoStyler.h"

namespace {

constexpr TColor Blue = 0xFF0000;
constexpr TColor Green = 0x008000;
constexpr TColor Teal = 0x808000;
constexpr TColor Orange = 1740031;

TElementStyle& AddElement(TElementStyles& styles, TStyleType type, TColor color, TFontStyles fontStyle = 0) {
    TElementStyle& element = styles.Add();
    element.SetStyleType(type);
    TMemoFont font;
    font.Color = color;
    font.Style = fontStyle;
    element.SetFont(font);
    return element;
}

void AddQuotes(TElementStyles& styles, const string& info, QChar quote) {
    TElementStyle& element = AddElement(styles, stBracket, Orange);
    element.SetInfo(info);
    element.SetBracketStart(quote);
    element.SetBracketEnd(quote);
}

} // namespace

TAdvJSMemoStyler::TAdvJSMemoStyler(TComponent* owner) : TAdvCustomMemoStyler(owner) {
    TElementStyle& words = AddElement(FAllStyles, stKeyword, Blue);
    words.SetInfo("Keywords");
    words.SetKeyWords({"(",    ")",        ";",      "{",      "}",        "break",  "delete",
                       "do",   "document", "else",   "for",    "function", "if",     "location",
                       "new",  "object",   "return", "script", "style",    "switch", "then",
                       "this", "var",      "while",  "window"});
    // The minus is a symbol as well and comes first: these two never show, on purpose.
    TElementStyle& calls = AddElement(FAllStyles, stKeyword, Green, fsBold);
    calls.SetInfo("Functions");
    calls.SetKeyWords({"--alert", "--confirm"});
    AddQuotes(FAllStyles, "Single-quoted text", u'\'');
    AddQuotes(FAllStyles, "Double-quoted text", u'"');
    TElementStyle& symbols = AddElement(FAllStyles, stSymbol, Teal);
    symbols.SetInfo("Symbols");
    symbols.SetSymbols(" ,;:.()[]=-*/^%<>#\r\n");
    FAllStyles.Init();

    FLineComment = "//";
    FMultiCommentLeft = "/*";
    FMultiCommentRight = "*/";
    FBlockStart = "{";
    FBlockEnd = "}";
    FDescription = "JavaScript";
    FFilter = "Javascript Files (*.js)|*.js";
    FDefaultExtension = ".js";
    FStylerName = "JavaScript";
}

void TAdvJSMemoStyler::UseTodaysLanguage() {
    constexpr TColor Grey = 0x666666; // all stand out from white by 4.5:1 at least
    constexpr TColor Brown = 0x0043A8;
    FAllStyles.Clear();
    TElementStyle& words = AddElement(FAllStyles, stKeyword, Blue);
    words.SetInfo("Keywords");
    words.SetKeyWords(
        {"async",    "await",  "break",     "case",   "catch",  "class",      "const", "continue", "debugger",
         "default",  "delete", "do",        "else",   "export", "extends",    "false", "finally",  "for",
         "function", "get",    "if",        "import", "in",     "instanceof", "let",   "new",      "null",
         "of",       "return", "set",       "static", "super",  "switch",     "this",  "throw",    "true",
         "try",      "typeof", "undefined", "var",    "void",   "while",      "with",  "yield"});
    TElementStyle& calls = AddElement(FAllStyles, stKeyword, Green, fsBold);
    calls.SetInfo("Objects");
    calls.SetKeyWords({"Document"});
    for (const char16_t quote : {u'\'', u'"', u'`'}) {
        AddQuotes(FAllStyles, "Text", quote);
        TElementStyle& text = FAllStyles[FAllStyles.Count() - 1];
        TMemoFont font = text.Font();
        font.Color = Brown;
        text.SetFont(font);
    }
    TElementStyle& symbols = AddElement(FAllStyles, stSymbol, Teal);
    symbols.SetInfo("Symbols");
    symbols.SetSymbols(" ,;:.()[]{}=-*/^%<>!&|?~#\r\n");
    FExpressions = FAllStyles.Count();
    AddElement(FAllStyles, stBracket, Brown).SetInfo("Regular expressions");
    FCommentStyle.TextColor = Grey;
    FHexIdentifier = "0x";
    FLiteral = "\\";
    FBracketsEndWithLine = true;
    FLongBracket = u'`';
}
