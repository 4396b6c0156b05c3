// The run-time tables: lookup order, calls, and conversions that never lose meaning.
#include "base/Reflection.h"
#include "base/Component.h"
#include "base/Convert.h"
#include "base/Exceptions.h"
#include "testing/Raised.h"

#include <gtest/gtest.h>

#include <limits>

class TSampleEnums {
    Q_GADGET
public:
    enum class TColour : quint8 { clRed, clGreen };
    Q_ENUM(TColour)
};

class TSampleBase : public TComponent {
    Q_OBJECT
public:
    Q_INVOKABLE TSampleBase() : TComponent(nullptr) {}
    PUBLISHED(Single, x, Fx) = 1;
    FIELD(int, Dummy) = 5;
};

class TSample : public TSampleBase {
    Q_OBJECT
public:
    Q_INVOKABLE TSample() {}
    FIELD(Single, X) = 2; // a field that differs from a property in case only: the property wins
    PUBLISHED(TFileName, fileName, FfileName);
    PUBLISHED(TColor, Colour, FColour) = 0xFF000000;

    Q_INVOKABLE double Twice(double Value) { return 2 * Value; }
    Q_INVOKABLE void Raise(const string& Text) { throw Exception(Text); }
    Q_INVOKABLE TSampleBase* Same(TSampleBase* Object) { return Object; }
    Q_INVOKABLE int WithDefault(int A, int B = 3) { return A + B; }
};

TEST(Reflection, MembersStandInDeclarationOrderAndNothingOfQObjectAmongThem) {
    QStringList names;
    for (const QMetaProperty& member : Reflection::Members(TSample::staticMetaObject))
        names.append(QString::fromLatin1(member.name()));
    EXPECT_EQ(names.join(u' '), "Name Tag x Dummy X fileName Colour");
    EXPECT_FALSE(Reflection::FindMember(TSample::staticMetaObject, u"objectName").isValid());
    EXPECT_TRUE(Reflection::FindMethods(TSample::staticMetaObject, u"deleteLater").isEmpty());
}

TEST(Reflection, LookupFoldsCaseAndPrefersPropertiesThenOwnMembers) {
    TSample sample;
    sample.setProperty("x", 7.0F);
    EXPECT_EQ(Reflection::FindMember(TSample::staticMetaObject, u"X").read(&sample).toFloat(), 7.0F);
    EXPECT_EQ(Reflection::FindMember(TSample::staticMetaObject, u"DUMMY").read(&sample).toInt(), 5);
    EXPECT_TRUE(Reflection::FindMember(TSample::staticMetaObject, u"name").isValid());
    EXPECT_FALSE(Reflection::FindMember(TSample::staticMetaObject, u"none").isValid());
}

TEST(Reflection, CallsConvertAndLetExceptionsPass) {
    TSample sample;
    const auto method = [](QStringView name) {
        return Reflection::FindMethods(TSample::staticMetaObject, name).value(0);
    };
    EXPECT_EQ(Reflection::Call(sample, method(u"twice"), {1.5F}).toDouble(), 3.0);
    EXPECT_EQ(Reflection::Call(sample, method(u"Same"), {QVariant::fromValue(&sample)}).value<TSampleBase*>(),
              &sample);
    EXPECT_EQ(Reflection::FindMethods(TSample::staticMetaObject, u"WithDefault").size(), 1);
    EXPECT_EQ(RaisedBy([&] { Reflection::Call(sample, method(u"Raise"), {"boom"}); }), "boom");
    EXPECT_EQ(RaisedBy([&] { Reflection::Call(sample, method(u"Twice"), {"x"}); }),
              "parameter \"Value\" of Twice: \"x\" is no Double");
}

TEST(Reflection, ConstructsByNumberOfArguments) {
    const std::unique_ptr<QObject> made(Reflection::Construct(TSample::staticMetaObject));
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->metaObject()->className(), "TSample");
    EXPECT_EQ(Reflection::Construct(TSample::staticMetaObject, {1, 2, 3}), nullptr);
}

struct TConversion {
    QVariant Value;
    QMetaType Target;
    QVariant Expected; // not valid: must raise
};

TEST(Convert, Table) {
    const auto integer = QMetaType::fromType<int>();
    const auto colour = QMetaType::fromType<TColor>();
    const auto enumeration = QMetaType::fromType<TSampleEnums::TColour>();
    const auto green = QVariant::fromValue(TSampleEnums::TColour::clGreen);
    const QList<TConversion> table{
        {2.0, integer, 2},
        {2.5, integer, {}},
        {std::nan(""), integer, {}},
        {4294967296.0, integer, {}},
        {true, integer, {}},
        {"1", integer, {}},
        {1, QMetaType::fromType<bool>(), {}},
        {"x", QMetaType::fromType<bool>(), {}},
        {0.1F, QMetaType::fromType<double>(), double(0.1F)},
        {1e300, QMetaType::fromType<float>(), {}},
        {-1, QMetaType::fromType<uint>(), {}},
        {std::numeric_limits<quint64>::max(), QMetaType::fromType<quint64>(),
         std::numeric_limits<quint64>::max()},
        {9223372036854775808.0, QMetaType::fromType<qint64>(), {}},
        {"a.pdf", QMetaType::fromType<TFileName>(), QVariant::fromValue(TFileName("a.pdf"))},
        {QVariant::fromValue(TFontName("Arial")), QMetaType::fromType<QByteArray>(), QByteArray("Arial")},
        {1, QMetaType::fromType<QString>(), {}},
        {-16777216, colour, QVariant::fromValue(TColor(0xFF000000))},
        {4278190080.0, colour, QVariant::fromValue(TColor(0xFF000000))},
        {1, enumeration, green},
        {"CLGREEN", enumeration, green},
        {2, enumeration, {}},
        {green, integer, {}},
    };
    for (const TConversion& row : table) {
        SCOPED_TRACE(row.Value.toString().toStdString() + " to " + row.Target.name());
        if (!row.Expected.isValid()) {
            EXPECT_THROW((void)ConvertTo(row.Value, row.Target, "it"), EConvertError);
            continue;
        }
        const QVariant got = ConvertTo(row.Value, row.Target, "it");
        EXPECT_EQ(got.metaType(), row.Target);
        EXPECT_EQ(got, row.Expected);
    }
}

TEST(CompareText, FoldsAsciiOnly) {
    EXPECT_EQ(CompareText(u"Merge", u"MERGE"), 0);
    EXPECT_NE(CompareText(u"Größe", u"GRÖßE"), 0);
    EXPECT_LT(CompareText(u"a", u"ab"), 0);
    EXPECT_GT(CompareText(u"b", u"A"), 0);
    for (const auto& [a, b, same] :
         {std::tuple(u"A", u"a", true), {u"Z", u"z", true}, {u"@", u"`", false}, {u"[", u"{", false}})
        EXPECT_EQ(CompareText(a, b) == 0, same);
}

#include "ReflectionTest.moc"
