#include "Samples.h"
#include "testing/Raised.h"

#include "base/Exceptions.h"
#include "xml/Xmlserial.h"

#include <QBuffer>

#include <cmath>
#include <cstring>
#include <random>

namespace {

QString Bits(double value) {
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return QString::number(bits, 16);
}

/// Code units, so that no two texts look alike.
QString Units(const QString& text) {
    QString units = QStringLiteral("'");
    for (const QChar c : text)
        units += QString::number(c.unicode(), 16) + u' ';
    return units;
}

QString DumpRecord(const TSampleRecord& record) {
    return Units(record.Filename) + QString::number(record.isFolder) + Bits(record.Inner.Depth);
}

QString DumpStep(const TSampleStep& step) {
    QString text =
        QString::fromLatin1(step.metaObject()->className()) + Units(step.FName) + QString::number(step.FTag);
    if (const auto* a = qobject_cast<const TSampleTextStep*>(&step))
        text += Units(a->FText) + QString::number(a->FFillColor.Value);
    if (const auto* b = qobject_cast<const TSampleNumberStep*>(&step))
        text += Bits(double(b->Fx)) + QString::number(b->Dummy);
    return text;
}

class TRandom {
public:
    explicit TRandom(quint32 seed) : FEngine(seed) {}
    quint64 Bits() { return FEngine(); }
    int Below(int limit) { return int(FEngine() % quint64(limit)); }
    bool Coin() { return Below(2) == 1; }
    double Number() {
        for (;;) {
            const quint64 bits = Coin() ? Bits() : Bits() & 0xFFFF000000000000;
            double number = 0;
            std::memcpy(&number, &bits, sizeof number);
            if (!std::isnan(number))
                return number;
        }
    }
    float Single() {
        const auto bits = quint32(Bits());
        float number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return std::isnan(number) ? 0.1F : number;
    }
    /// Pieces that each have gone wrong in some XML writer, side by side in any order.
    QString Text() {
        static const QStringList Pieces{QStringLiteral("a"),       QStringLiteral(" "),
                                        QStringLiteral("\n"),      QStringLiteral("\r"),
                                        QStringLiteral("\t"),      QStringLiteral("\r\n"),
                                        QStringLiteral("<"),       QStringLiteral("&amp;"),
                                        QStringLiteral("]]>"),     QStringLiteral("\""),
                                        QStringLiteral("_"),       QStringLiteral("_x0041"),
                                        QStringLiteral("_x005F_"), QStringLiteral("x000D_"),
                                        QStringLiteral("_x00"),    QStringLiteral("\u00E4"),
                                        QString(QChar(0)),         QString(QChar(1)),
                                        QString(QChar(0x1F)),      QString(QChar(0x7F)),
                                        QString(QChar(0x85)),      QString(QChar(0x2028)),
                                        QString(QChar(0xFEFF)),    QString(QChar(0xFFFE)),
                                        QString(QChar(0xFFFF)),    QString(QChar(0xD83D)),
                                        QString(QChar(0xDE00)),    QString::fromUcs4(U"\U0001F600")};
        QString text;
        for (int i = Below(6); i > 0; --i)
            text += Pieces[Below(int(Pieces.size()))];
        return text;
    }
    TSampleRecord Record() { return {Text(), Coin(), {Number()}}; }
    QList<TSampleRecord> Records() {
        QList<TSampleRecord> records;
        for (int i = Below(4); i > 0; --i)
            records.append(Record());
        return records;
    }
    std::unique_ptr<TSampleStep> Step() {
        std::unique_ptr<TSampleStep> step;
        if (Coin()) {
            auto text = std::make_unique<TSampleTextStep>();
            text->FText = Text();
            text->FFillColor = quint32(Bits());
            step = std::move(text);
        } else {
            auto number = std::make_unique<TSampleNumberStep>();
            number->Fx = Single();
            number->Dummy = qint32(Bits());
            step = std::move(number);
        }
        step->FName = Text();
        step->FTag = qint64(Bits());
        return step;
    }

private:
    std::mt19937_64 FEngine;
};

} // namespace

string TSample::Dump() {
    QStringList parts{Units(FName), QString::number(FTag), Units(FText), Units(FfileName), Units(FFontName)};
    parts += {QString::fromLatin1(FNarrow.toHex()), QString::number(FEnabled), QString::number(FByte)};
    parts += {QString::number(FNumber), QString::number(FCheckEvery), QString::number(FBig)};
    parts +=
        {Bits(double(FShort)), Bits(FLong), QString::number(FColor.Value), QString::number(FAlpha.Value)};
    parts += {QString::number(int(FSize)), DumpRecord(FRecord), QString::number(FHeld.FPrint)};
    for (const TSampleRecord& record : FRecords)
        parts.append(QStringLiteral("record ") + DumpRecord(record));
    for (const TSampleRecord& record : FPlain)
        parts.append(QStringLiteral("plain ") + DumpRecord(record));
    for (const QString& line : FLines)
        parts.append(QStringLiteral("line ") + Units(line));
    for (int i = 0; i < FSteps.Count(); ++i)
        parts.append(DumpStep(*FSteps[i]));
    for (int i = 0; i < FHeldList.Count(); ++i)
        parts.append(QStringLiteral("held ") + QString::number(FHeldList[i]->FPrint));
    parts.append(QStringLiteral("strangers ") + QString::number(FStrangers.Count()));
    return parts.join(u'\n');
}

void Randomize(TSample& sample, quint32 seed) {
    TRandom random(seed);
    sample.FName = random.Text();
    sample.FTag = qint64(random.Bits());
    sample.FText = random.Text();
    sample.FfileName = random.Text().remove(QChar::Null); // which no path holds
    sample.FFontName = random.Text();
    sample.FNarrow = QByteArray("\xC3\xA4 ") + QByteArray::number(random.Below(100));
    sample.FEnabled = random.Coin();
    sample.FByte = quint8(random.Bits());
    sample.FNumber = qint32(random.Bits());
    sample.FCheckEvery = qint64(random.Bits());
    sample.FBig = random.Bits();
    sample.FShort = random.Single();
    sample.FLong = random.Number();
    sample.FColor = quint32(random.Bits());
    sample.FAlpha = quint32(random.Bits());
    sample.FSize = random.Coin() ? TSampleSizes::TSize::szLarge : TSampleSizes::TSize::szSmall;
    sample.FRecord = random.Record();
    sample.FRecords = random.Records();
    sample.FPlain = random.Records();
    for (int i = random.Below(3); i > 0; --i)
        sample.FLines.append(random.Text());
    sample.FHeld.FPrint = random.Coin();
    for (int i = random.Below(4); i > 0; --i)
        sample.FSteps.Add(random.Step());
    for (int i = random.Below(3); i > 0; --i)
        sample.FHeldList.Add(std::make_unique<TSampleHeld>())->FPrint = random.Coin();
}

string ReadFrom(TSample& sample, const QByteArray& document) {
    QByteArray bytes = document;
    QBuffer stream(&bytes);
    stream.open(QIODevice::ReadOnly);
    return RaisedBy([&] { XMLDeserialize(sample, stream, string()); });
}

QByteArray Written(const QObject& object) {
    QBuffer stream;
    stream.open(QIODevice::WriteOnly);
    XMLSerialize(object, stream, string());
    return stream.data();
}

QByteArray SampleWith(const QByteArray& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Sample>" + content + "</Sample>";
}

void RegisterSamples() {
    for (const QMetaObject* type :
         {&TSampleTextStep::staticMetaObject, &TSampleNumberStep::staticMetaObject,
          &TSampleUnknownStep::staticMetaObject, &TSampleStranger::staticMetaObject})
        Reflection::RegisterClass(*type);
}
