// Text on pages: what other programs read and see, what it measures, and fonts that aren't as they should be.
#include "base/Exceptions.h"
#include "engine/content/FormContent.h"
#include "engine/fonts/CffCharset.h"
#include "engine/fonts/DocumentFonts.h"
#include "engine/fonts/FontFace.h"
#include "engine/fonts/FontProgram.h"
#include "testing/Workspace.h"

#include <QRegularExpression>
#include <QtEndian>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <cmath>
#include <thread>

namespace {

using namespace Qt::StringLiterals;

struct TFontsCase : testing::Test {
    static constexpr Double Size = 20;
    const TWorkspace Files;
    QPDF Pdf;
    TDocumentFonts Fonts{Pdf};

    TFontsCase() { Pdf.emptyPDF(); }

    /// Adds a page that shows one line; returns its operators.
    std::string Show(const TShapedLine& line) {
        TFormContent content;
        Fonts.ShowLine(content, line, Size, 40, 60);
        QPDFObjectHandle page = QPDFObjectHandle::parse("<< /Type /Page /MediaBox [0 0 500 100] >>");
        page.replaceKey("/Resources", content.Resources());
        page.replaceKey("/Contents", QPDFObjectHandle::newStream(&Pdf, content.Data()));
        QPDFPageDocumentHelper(Pdf).addPage(Pdf.makeIndirectObject(page), /*first*/ false);
        return content.Data();
    }
    std::string Show(const string& text, const string& family = u"Arial"_s, int style = 0) {
        return Show(ShapeLine(text, {family, style, Size}));
    }
    [[nodiscard]] string Save(const string& name = u"out.pdf"_s) {
        Fonts.Fill();
        const string path = Files.Path(name);
        const QByteArray narrow = path.toUtf8(); // the writer keeps no copy
        QPDFWriter writer(Pdf, narrow.constData());
        writer.setStreamDataMode(qpdf_s_preserve);
        writer.write();
        EXPECT_EQ(RunProgram(u"qpdf"_s, {u"--check"_s, path}).Exit, 0);
        return path;
    }
};

/// The text of each page as a program tells it, without what it says of writing directions.
QStringList Told(const string& program, const QStringList& arguments) {
    string text = QString::fromUtf8(RunProgram(program, arguments).Out);
    text.remove(QRegularExpression(u"[\\x{202A}-\\x{202E}\\x{200E}\\x{200F}]"_s));
    QStringList pages = text.split(u'\f');
    for (QString& page : pages)
        page = page.trimmed();
    return pages;
}

/// Dark pixels of each page.
QList<int> InkOf(const TWorkspace& files, const string& path) {
    const string prefix = files.Path(u"ink/page"_s);
    files.Write(u"ink/made"_s, {});
    RunProgram(u"pdftoppm"_s, {u"-gray"_s, u"-r"_s, u"72"_s, path, prefix});
    QList<int> ink;
    for (const QString& name : files.Names(u"ink"_s).filter(u".pgm"_s)) {
        const QByteArray picture = files.Read(u"ink/"_s + name);
        const auto isDark = [](char level) { return quint8(level) < 100; };
        ink.append(int(std::count_if(picture.end() - 500 * 100, picture.end(), isDark)));
    }
    return ink;
}

/// The lines of `pdffonts`, each as name without tag, type, embedded, subset, unicode.
QStringList EmbeddedFonts(const string& path) {
    QStringList fonts;
    for (const QString& line : QString::fromUtf8(RunProgram(u"pdffonts"_s, {path}).Out).split(u'\n').mid(2))
        if (line.size() > 80)
            fonts.append(line.left(37).trimmed().mid(7) + u' ' + line.mid(37).left(47).simplified());
    fonts.sort();
    return fonts;
}

QByteArray Plain(const string& path) {
    return RunProgram(u"qpdf"_s, {u"--qdf"_s, u"--object-streams=disable"_s, path, u"-"_s}).Out;
}

enum class TByMutool { Yes, No }; // it leaves right to left as drawn and knows no replacement text

TEST_F(TFontsCase, TextIsSeenAndReadAsTyped) {
    const struct {
        string Text;
        string Family;
        TByMutool ByMutool = TByMutool::Yes;
        string Read = {}; // where the reader has its own mind
    } cases[] = {
        {u"Hello, AVATAR (\\) office fi ffi"_s, u"Arial"_s},
        {u"Hello, AVATAR (\\) office fi ffi"_s, u"Cantarell"_s},
        {u"Привет, мир"_s, u"Arial"_s},
        {u"Ελληνικά κείμενο"_s, u"Times New Roman"_s},
        {u"Ωhm \u2126 Å \u212B"_s, u"Arial"_s, TByMutool::No}, // one glyph, two characters
        {u"de\u0301compose\u0300 c\u0327\u0301 i\u0307"_s, u"Arial"_s, TByMutool::No, {}},
        {u"你好，世界 日本語テキスト"_s, u"Arial"_s},
        {u"हिन्दी किताब क्षत्रिय र्क"_s, u"Arial"_s, TByMutool::No},
        {u"مرحبا بالعالم"_s, u"Arial"_s, TByMutool::No},
        {u"سلام"_s, u"Arial"_s, TByMutool::No, u"س\uFEFBم"_s},
        {u"می\u200Cخواهم"_s, u"DejaVu Sans"_s, TByMutool::No},
        {u"שלום (עולם) 123"_s, u"Arial"_s, TByMutool::No},
        {u"smile 😀 end"_s, u"Arial"_s},
        {u"none \U0010FFFD here"_s, u"Arial"_s, TByMutool::No}, // in no font
        {u"one\ttwo"_s, u"Arial"_s, TByMutool::Yes, u"one two"_s},
        {u"no\u0001thing\r\n\u200E"_s, u"Arial"_s, TByMutool::Yes, u"nothing"_s},
    };
    for (const auto& one : cases)
        Show(one.Text, one.Family);
    const string path = Save();
    const QStringList texts = Told(u"pdftotext"_s, {path, u"-"_s});
    const QStringList others = Told(u"mutool"_s, {u"draw"_s, u"-q"_s, u"-F"_s, u"text"_s, path});
    const QList<int> ink = InkOf(Files, path);
    ASSERT_EQ(ink.size(), qsizetype(std::size(cases)));
    for (qsizetype i = 0; i < ink.size(); ++i) {
        const auto& one = cases[i];
        const string expected = (one.Read.isEmpty() ? one.Text : one.Read);
        const auto canonical = [](const string& text) {
            return text.simplified().normalized(QString::NormalizationForm_C);
        };
        EXPECT_EQ(canonical(texts.value(i)), canonical(expected)) << one.Text.toStdString();
        const string other = one.ByMutool == TByMutool::Yes ? others.value(i).simplified() : expected;
        EXPECT_EQ(other, expected) << one.Text.toStdString();
        EXPECT_GT(ink[i], 50) << one.Text.toStdString();
    }
}

TEST_F(TFontsCase, FamilyAndStyleChooseOneSmallFontForAllPages) {
    const struct {
        string Family;
        int Style;
        string Font;
    } cases[] = {
        {u"Arial"_s, 0, u"LiberationSans CID TrueType"_s},
        {{}, 1, u"LiberationSans-Bold CID TrueType"_s},
        {u"arial"_s, 2, u"LiberationSans-Italic CID TrueType"_s},
        {u"Times New Roman"_s, 3, u"LiberationSerif-BoldItalic CID TrueType"_s},
        {u"Courier New"_s, 0, u"LiberationMono CID TrueType"_s},
        {u"Cantarell"_s, 1, u"Cantarell-Bold CID Type 0C"_s},
        {u"Lohit Devanagari"_s, 2, u"Lohit-Devanagari CID TrueType"_s},
    };
    QStringList expected;
    for (const auto& one : cases) {
        for (int page = 0; page < 3; ++page)
            Show(u"Confidential"_s, one.Family, one.Style);
        expected.append(one.Font + u" Identity-H yes yes yes"_s);
    }
    expected.sort();
    const string path = Save();
    EXPECT_EQ(EmbeddedFonts(path), expected);
    EXPECT_EQ(Plain(path).count("/Type /Font\n"), 2 * expected.size()); // each with its descendant
    EXPECT_LT(QFileInfo(path).size(), 40'000);
}

TEST_F(TFontsCase, PlainLatinIsOneShortOperator) {
    EXPECT_EQ(Show(u"ABC"_s), "BT\n/F0 20 Tf\n40 60 Td\n<002400250026>Tj\nET\n");
    EXPECT_NE(Show(u"AVA"_s).find("]TJ"), std::string::npos);
    EXPECT_EQ(Show(u"\u0001"_s), "");
    EXPECT_EQ(Show(u"AB"_s, u"Lohit Devanagari"_s, 2).find("/Span"), std::string::npos);
}

TEST_F(TFontsCase, SectionsOfTheMapToTextHoldHundredEntriesAtMost) {
    string text;
    for (char16_t letter = 0x100; letter < 0x250; letter += 2) // no two of a run
        text += QChar(letter);
    Show(text, u"DejaVu Sans"_s);
    const QByteArray plain = Plain(Save());
    EXPECT_EQ(plain.count("\n100 beginbfchar"), 1);
    EXPECT_EQ(plain.count(" beginbfchar"), 2);
}

TEST_F(TFontsCase, FontsGrowWithWhatIsShownAfterASave) {
    Show(u"first"_s);
    const string before = Save(u"before.pdf"_s);
    const QByteArray first = Files.Read(u"before.pdf"_s);
    (void)Save(u"same.pdf"_s);
    EXPECT_EQ(Files.Read(u"same.pdf"_s).size(), first.size());
    Show(u"Second XYZ"_s);
    const string after = Save(u"after.pdf"_s);
    EXPECT_EQ(Told(u"pdftotext"_s, {after, u"-"_s}), (QStringList{u"first"_s, u"Second XYZ"_s, {}}));
    EXPECT_EQ(EmbeddedFonts(after), EmbeddedFonts(before));
    const QList<int> ink = InkOf(Files, after);
    EXPECT_GT(ink.value(0), 50);
    EXPECT_GT(ink.value(1), 100);
}

TEST_F(TFontsCase, WidthsAreThoseThatReadersSee) {
    const struct {
        string Text, Family;
        int Style = 0;
    } cases[] = {{u"AVATAR"_s, u"Arial"_s},           {u"iiiiiiiiiiiiiiiiiiii"_s, u"Arial"_s},
                 {u"WWW.official"_s, u"Cantarell"_s}, {u"Kerning.To"_s, u"Times New Roman"_s, 3},
                 {u"世界世界"_s, u"Arial"_s},         {u"עולם"_s, u"DejaVu Sans"_s}};
    QList<Double> widths;
    for (const auto& one : cases) {
        const TShapedLine line = ShapeLine(one.Text, {one.Family, one.Style, Size});
        Show(line);
        widths.append(line.Width);
    }
    const QString boxes = QString::fromUtf8(RunProgram(u"pdftotext"_s, {u"-bbox"_s, Save(), u"-"_s}).Out);
    auto word = QRegularExpression(u"xMin=\"([0-9.]+)\".*xMax=\"([0-9.]+)\""_s).globalMatch(boxes);
    for (qsizetype i = 0; i < widths.size(); ++i) {
        ASSERT_TRUE(word.hasNext());
        const auto match = word.next();
        EXPECT_NEAR(match.captured(1).toDouble(), 40, 0.02) << cases[i].Text.toStdString();
        EXPECT_NEAR(match.captured(2).toDouble(), 40 + widths[i], 0.02) << cases[i].Text.toStdString();
    }
}

TEST(TextShaper, EachCharacterHasItsPlace) {
    const QStringList texts = {{},         u"A"_s,       u"office"_s, u"a😀b"_s,   u"e\u0301x"_s,   u"שלום"_s,
                               u"a שלו"_s, u"שלו abc"_s, u"السلام"_s, u"हिन्दी"_s, u"x\u0001\ty"_s, u"世界"_s};
    for (const string& text : texts) {
        SCOPED_TRACE(text.toStdString());
        const TShapedLine line = ShapeLine(text, {u"DejaVu Sans"_s, 0, 10});
        ASSERT_EQ(line.Chars.Count(), text.size() + 1);
        EXPECT_FLOAT_EQ(line.Chars.GetItem(int(text.size())).x, Single(line.Width));
        EXPECT_EQ(line.Chars.GetItem(int(text.size())).width, 0);
        EXPECT_GE(line.Height, line.Ascent + line.Descent);
        // What the measuring of stamps relies on: all of the text, and none of it twice.
        Double total = 0, reach = 0;
        for (int i = 0; i < text.size(); ++i) {
            const TCharInfo& item = line.Chars.GetItem(i);
            total += std::abs(item.width);
            reach = std::max<Double>({reach, item.x, i == text.size() - 1 ? item.x + item.width : 0});
            EXPECT_GT(item.height, 10);
        }
        EXPECT_NEAR(total, line.Width, 0.01);
        EXPECT_NEAR(reach, line.Width, 0.01);
    }
    const TShapedLine line = ShapeLine(u"😀ffש"_s, {u"DejaVu Sans"_s, 0, 10}); // with a ligature
    EXPECT_EQ(line.Chars.GetItem(1).width, 0);
    EXPECT_FLOAT_EQ(line.Chars.GetItem(2).width, line.Chars.GetItem(3).width);
    EXPECT_LT(line.Chars.GetItem(4).width, 0);
}

TEST_F(TFontsCase, OddTextIsShownAsFarAsItCanBe) {
    const auto width = [](const string& text) { return ShapeLine(text, {{}, 0, Size}).Width; };
    EXPECT_DOUBLE_EQ(width(u"a"_s + QChar(u'\0') + u"b\u007F\u0085\u2028"_s), width(u"ab"_s));
    EXPECT_NEAR(width(u"\t"_s), width(u"    "_s), 1e-6);
    for (const string& text :
         {u"x"_s.repeated(100'000), u"é ש ن 世 "_s.repeated(3'000), u"e"_s + u"\u0301"_s.repeated(2'000),
          string(QChar(0xD800)) + QChar(0xDC00) + QChar(0xDC00), u"\u0301\u200D"_s, u"(\u202E[\u2067"_s})
        Show(text);
    Show(ShapeLine(u"none"_s, {{}, 0, 0}));
    Show(ShapeLine(u"none"_s, {{}, 7, std::nan("")}));
    (void)Save();
}

TEST(TextShaper, ShapesOnSeveralThreads) {
    const string text = u"Bates 000123 שלום 世界"_s;
    const Double expected = ShapeLine(text, {u"Arial"_s, 0, 12}).Width;
    std::vector<Double> widths(4);
    std::vector<std::thread> threads;
    for (Double& width : widths)
        threads.emplace_back([&width, &text] { width = ShapeLine(text, {u"Arial"_s, 0, 12}).Width; });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(widths, std::vector<Double>(4, expected));
}

// ---- font files

QByteArray FontFile(const string& pattern) {
    QFile file(QString::fromUtf8(RunProgram(u"fc-match"_s, {u"-f"_s, u"%{file}"_s, pattern}).Out));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    return file.readAll();
}

/// Where the records of a font's tables begin; each is tag, checksum, offset, length.
QList<qsizetype> TableRecords(const QByteArray& font) {
    QList<qsizetype> records;
    for (int i = 0; i < qFromBigEndian<quint16>(font.constData() + 4); ++i)
        records.append(12 + 16 * i);
    return records;
}

TEST(FontFace, TakesNoFontThatCannotBeEmbedded) {
    const TWorkspace files;
    const QByteArray font = FontFile(u"Liberation Sans"_s);
    qsizetype type = 0; // of embedding
    for (const qsizetype record : TableRecords(font))
        if (font.mid(record, 4) == "OS/2")
            type = qFromBigEndian<quint32>(font.constData() + record + 8) + 8;
    ASSERT_GT(type, 0);
    const struct {
        quint16 Type;
        bool IsTaken;
    } cases[] = {{0, true}, {2, false}, {4, true}, {8, true}, {0x102, false}, {0x100, false}, {0x200, false}};
    for (const auto& one : cases) {
        QByteArray changed = font;
        qToBigEndian(one.Type, changed.data() + type);
        const string path = files.Write(u"%1.ttf"_s.arg(one.Type), changed);
        EXPECT_EQ(TFontFace::Get({path.toUtf8()}) != nullptr, one.IsTaken) << one.Type;
    }
    for (const QByteArray& damaged : {QByteArray(), QByteArray("no font"), font.left(2000)})
        EXPECT_EQ(TFontFace::Get({files.Write(u"%1.bin"_s.arg(damaged.size()), damaged).toUtf8()}), nullptr);
}

TEST(FontFace, FindsTheFacesOfACollection) {
    const TWorkspace files;
    QByteArray collection("ttcf\0\1\0\0\0\0\0\2", 12);
    const QList<QByteArray> fonts = {FontFile(u"Liberation Sans"_s), FontFile(u"DejaVu Sans"_s)};
    quint32 offset = 20;
    for (const QByteArray& font : fonts) {
        collection.append(QByteArray(4, '\0'));
        qToBigEndian(offset, collection.data() + collection.size() - 4);
        offset += quint32(font.size());
    }
    offset = 20;
    for (QByteArray font : fonts) {
        for (const qsizetype record : TableRecords(font))
            qToBigEndian(qFromBigEndian<quint32>(font.constData() + record + 8) + offset,
                         font.data() + record + 8);
        collection += font;
        offset += quint32(font.size());
    }
    const string path = files.Write(u"two.ttc"_s, collection);
    for (int i = 0; i < 2; ++i) {
        const auto face = TFontFace::Get({path.toUtf8(), i});
        ASSERT_TRUE(face);
        EXPECT_EQ(FactsOf(*face).PostScriptName, i == 0 ? "LiberationSans" : "DejaVuSans");
        const auto alone = TFontFace::Get({files.Write(u"%1.ttf"_s.arg(i), fonts[i]).toUtf8()});
        const std::vector<quint32> glyphs = {face->GlyphOf(U'A'), face->GlyphOf(U'é')};
        EXPECT_EQ(SubsetProgram(*face, glyphs).Program, SubsetProgram(*alone, glyphs).Program);
    }
}

TEST(CffCharset, TellsNumbersFromCids) {
    // Header, names, top dictionary: ROS, charset at 0x2030405; three glyphs.
    const std::string font("\1\0\4\1"
                           "\0\1\1\1\2"
                           "A"
                           "\0\1\1\1\x0D"
                           "\x8B\x8B\x8B\x0C\x1E\x1D\2\3\4\5\x0F"
                           "\x0E",
                           27);
    EXPECT_TRUE(HasCids(font));
    std::string changed = font;
    ASSERT_TRUE(SetCids(changed, {0, 0x1234, 0x5678}));
    EXPECT_EQ(changed.substr(21, 4), std::string("\0\0\0\x1B", 4));
    EXPECT_EQ(changed.substr(27), std::string("\0\x12\x34\x56\x78", 5));
    for (size_t length = 0; length < font.size() - 1; ++length) {
        std::string damaged = font.substr(0, length);
        EXPECT_FALSE(SetCids(damaged, {0, 1}));
        EXPECT_EQ(damaged, font.substr(0, length));
    }
    EXPECT_FALSE(HasCids(std::string("\1\0\4\1"
                                     "\0\1\1\1\2"
                                     "A"
                                     "\0\1\1\1\2"
                                     "\x0F",
                                     16)));
}

} // namespace
