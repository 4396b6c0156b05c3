#pragma once
// Classes with a member of every kind, and what the tests need to read and compare them.
#include "base/Component.h"
#include "base/ObjectList.h"
#include "xml/XmlMarks.h"

#include <QStringList>

class TSampleSizes {
    Q_GADGET
public:
    enum class TSize : quint8 { szSmall, szLarge };
    Q_ENUM(TSize)
};

struct TSampleInner {
    Q_GADGET
public:
    FIELD(Double, Depth) = 0;
    bool operator==(const TSampleInner&) const = default;
};

struct TSampleRecord {
    Q_GADGET
public:
    FIELD(string, Filename);
    FIELD(Boolean, isFolder) = false;
    FIELD(TSampleInner, Inner);
    bool operator==(const TSampleRecord&) const = default;
};

class TSampleHeld : public QObject {
    Q_OBJECT
public:
    Q_INVOKABLE TSampleHeld() {}
    PUBLISHED(Boolean, Print, FPrint) = true;
};

/// The base of a list's items, which tell their class.
class TSampleStep : public TComponent {
    Q_OBJECT
    XML_ROOT("Step", true)
    XML_PLACEHOLDER("TSampleUnknownStep")
public:
    TSampleStep() : TComponent(nullptr) {}
};

class TSampleTextStep : public TSampleStep {
    Q_OBJECT
public:
    Q_INVOKABLE TSampleTextStep() {}
    PUBLISHED(string, Text, FText);
    PUBLISHED(TColor, FillColor, FFillColor) = 0xFF000000;
};

class TSampleNumberStep : public TSampleStep {
    Q_OBJECT
public:
    Q_INVOKABLE TSampleNumberStep() {}
    PUBLISHED(Single, x, Fx) = 0;
    FIELD(Integer, Dummy) = 0;
};

class TSampleUnknownStep : public TSampleStep {
    Q_OBJECT
    Q_PROPERTY(string ClassName MEMBER ClassName STORED false)
    Q_PROPERTY(string Xml MEMBER Xml STORED false)
public:
    Q_INVOKABLE TSampleUnknownStep() {}
    string ClassName, Xml;
};

/// A class that is no step, and whose lists have no placeholder.
class TSampleStranger : public TComponent {
    Q_OBJECT
    XML_ROOT("Stranger", true)
public:
    Q_INVOKABLE TSampleStranger() : TComponent(nullptr) {}
};

using TSampleSteps = TObjectList<TSampleStep>;
using TSampleStrangers = TObjectList<TSampleStranger>;
using TSampleHeldList = TObjectList<TSampleHeld>;

class TSample : public TComponent {
    Q_OBJECT
    XML_ROOT("Sample", false)
    XML_ELEMENT(Records, "AllRecords", "One")
    Q_PROPERTY(int Count READ Count STORED false)
    Q_PROPERTY(int ReadOnly READ Count)
    Q_PROPERTY(TSampleHeld* Held READ Held)
    Q_PROPERTY(TSampleSteps* Steps READ Steps)
    Q_PROPERTY(TSampleStrangers* Strangers READ Strangers)
    Q_PROPERTY(TSampleHeldList* HeldList READ HeldList)
public:
    TSample() : TComponent(nullptr) {}
    PUBLISHED(string, Text, FText);
    PUBLISHED(TFileName, fileName, FfileName);
    PUBLISHED(TFontName, FontName, FFontName) = QStringLiteral("Arial");
    PUBLISHED(NarrowString, Narrow, FNarrow);
    PUBLISHED(Boolean, Enabled, FEnabled) = true;
    PUBLISHED(quint8, Byte, FByte) = 7;
    PUBLISHED(Integer, Number, FNumber) = 0;
    PUBLISHED(Int64, CheckEvery, FCheckEvery) = 0;
    PUBLISHED(quint64, Big, FBig) = 0;
    PUBLISHED(Single, Short, FShort) = 12;
    PUBLISHED(Double, Long, FLong) = 0;
    PUBLISHED(TColor, Color, FColor) = 0xFF000000;
    PUBLISHED(ARGB, Alpha, FAlpha) = 0;
    PUBLISHED(TSampleSizes::TSize, Size, FSize) = TSampleSizes::TSize::szSmall;
    PUBLISHED(TSampleRecord, Record, FRecord);
    PUBLISHED(QList<TSampleRecord>, Records, FRecords);
    PUBLISHED(QList<TSampleRecord>, Plain, FPlain);
    PUBLISHED(QStringList, Lines, FLines);

    [[nodiscard]] int Count() const { return FSteps.Count(); }
    [[nodiscard]] TSampleHeld* Held() { return &FHeld; }
    [[nodiscard]] TSampleSteps* Steps() { return &FSteps; }
    [[nodiscard]] TSampleStrangers* Strangers() { return &FStrangers; }
    [[nodiscard]] TSampleHeldList* HeldList() { return &FHeldList; }

    /// All members in a text that tells any two states apart, made without the run-time tables.
    [[nodiscard]] string Dump();

    TSampleHeld FHeld;
    TSampleSteps FSteps;
    TSampleStrangers FStrangers;
    TSampleHeldList FHeldList;
};

/// A subclass without a root mark of its own: the base's doesn't cover it.
class TSampleChild : public TSample {
    Q_OBJECT
};

/// Makes samples at random, always the same ones for a seed.
void Randomize(TSample& sample, quint32 seed);

/// Fills the sample from a document; the message of the exception, or empty.
[[nodiscard]] string ReadFrom(TSample& sample, const QByteArray& document);
[[nodiscard]] QByteArray Written(const QObject& object);
/// A document of one member.
[[nodiscard]] QByteArray SampleWith(const QByteArray& content);

void RegisterSamples();
