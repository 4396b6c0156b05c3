// How values are written and what is read, one row a form.
#include "xml/Lexical.h"
#include "Samples.h"
#include "base/Exceptions.h"
#include "testing/Raised.h"
#include "xml/XmlEscape.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using TSize = TSampleSizes::TSize;

struct TForm {
    QVariant Value;
    string Written;
    QStringList AlsoRead;
};

struct TBadForm {
    QMetaType Type;
    string Text;
    string Message;
};

} // namespace

TEST(Lexical, WritesOneFormAndReadsItsKin) {
    const QList<TForm> table{
        {true, "true", {"True", "TRUE", "1", " true\n"}},
        {false, "false", {"False", "0"}},
        {qint32(-5), "-5", {" -5 ", "-05"}},
        {qint32(5), "5", {"+5"}},
        {std::numeric_limits<qint64>::min(), "-9223372036854775808", {}},
        {0.1F, "0.1", {"0.10", "1e-1", ".1", "1E-1", "+0.1"}},
        {12.0, "12", {"12.0", "12."}},
        {1.0 / 3, "0.3333333333333333", {}},
        {-0.0, "-0", {"-0.0"}},
        {std::numeric_limits<double>::infinity(), "inf", {"INF", "Infinity"}},
        {QVariant::fromValue(TColor(0xFF000000)), "0xFF000000", {"0xff000000", "4278190080", "-16777216"}},
        {QVariant::fromValue(TColor(0x00416A1C)), "0x00416A1C", {"0x416a1c", "4287004", "0X00416A1C"}},
        {QVariant::fromValue(TSize::szLarge), "szLarge", {"SZLARGE", "1", " szLarge "}},
        {" a\r\n\tb ", " a\r\n\tb ", {}},
        {QByteArray("\xC3\xA4"), "\u00E4", {}},
    };
    for (const TForm& row : table) {
        SCOPED_TRACE(row.Written.toStdString() + " of " + row.Value.typeName());
        EXPECT_EQ(Lexical::Format(row.Value), row.Written);
        for (const string& text : QStringList(row.Written) + row.AlsoRead) {
            const QVariant read = Lexical::Parse(text, row.Value.metaType());
            EXPECT_EQ(read.metaType(), row.Value.metaType()) << text.toStdString();
            EXPECT_EQ(read, row.Value) << text.toStdString();
        }
    }
}

TEST(Lexical, RefusesWhatIsNoValue) {
    const auto boolean = QMetaType::fromType<bool>();
    const auto integer = QMetaType::fromType<qint32>();
    const auto number = QMetaType::fromType<float>();
    const auto colour = QMetaType::fromType<TColor>();
    const auto size = QMetaType::fromType<TSize>();
    const QList<TBadForm> table{
        {boolean, "yes", "\"yes\" is no Boolean (true or false)"},
        {integer, "", "\"\" is no whole number"},
        {integer, "2.5", "\"2.5\" is no whole number"},
        {integer, "1 2", "\"1 2\" is no whole number"},
        {integer, "2147483648", "\"2147483648\" is no whole number of 32 bits"},
        {QMetaType::fromType<quint8>(), "-1", "\"-1\" is no whole number of 8 bits"},
        {QMetaType::fromType<qint64>(), "9223372036854775808",
         "\"9223372036854775808\" is no whole number of 64 bits"},
        {QMetaType::fromType<quint64>(), "18446744073709551616",
         "\"18446744073709551616\" is no whole number"},
        {number, "12,5", "\"12,5\" is no number (as 12.5)"},
        {number, "1e39", "\"1e39\" is no number (as 12.5)"},
        {number, "\u0661", "\"\u0661\" is no number (as 12.5)"},
        {number, "0x10", "\"0x10\" is no number (as 12.5)"},
        {colour, "0x100000000", "\"0x100000000\" is no colour (as 0xFF336699)"},
        {colour, "0x+1", "\"0x+1\" is no colour (as 0xFF336699)"},
        {colour, "4294967296", "\"4294967296\" is no colour (as 0xFF336699)"},
        {size, "szHuge", "\"szHuge\" is no TSize (szSmall, szLarge)"},
        {size, "2", "\"2\" is no TSize (szSmall, szLarge)"},
        {integer, string(1000, u'x'), "\"" + string(80, u'x') + "...\" is no whole number"},
    };
    for (const TBadForm& row : table) {
        SCOPED_TRACE(row.Text.toStdString() + " as " + row.Type.name());
        EXPECT_EQ(RaisedBy([&] { (void)Lexical::Parse(row.Text, row.Type); }), row.Message);
    }
    EXPECT_THROW((void)Lexical::Format(QVariant::fromValue(TSize(9))), EConvertError);
    EXPECT_THROW((void)Lexical::Format(QByteArray("\xFF")), EConvertError);
}

TEST(XmlEscape, IsReversible) {
    const QList<std::pair<string, string>> table{
        {QString(QChar(0)) + QChar(8), "_x0000__x0008_"},
        {"\t\n\r", "\t\n\r"},
        {"_x0041_", "_x005F_x0041_"},
        {"_x00e4_", "_x005F_x00e4_"},
        {"_x005F_x0041_", "_x005F_x005F_x005F_x0041_"},
        {"_x004G_", "_x004G_"},
        // The underscore of the next escape must not end this one.
        {QStringLiteral("_x0041") + QChar(1), "_x005F_x0041_x0001_"},
        {QString(QChar(0xDE00)) + QChar(0xD83D), "_xDE00__xD83D_"},
        {QString(QChar(0xFFFF)), "_xFFFF_"},
    };
    for (const auto& [text, escaped] : table) {
        EXPECT_EQ(EscapeForbidden(text), escaped) << escaped.toStdString();
        EXPECT_EQ(UnescapeForbidden(escaped), text) << escaped.toStdString();
    }
    EXPECT_EQ(UnescapeForbidden("_x000d_"), "\r");
}
