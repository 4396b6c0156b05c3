#pragma once
// PDF objects as callers of the engine see them: a few kinds that can be made, and references to objects of
// a document, which a script holds and hands back.
#include "base/Text.h"

#include <QObject>

#include <memory>

/// An object of a document. Shared, since dictionaries and arrays refer to what is put into them.
class TPDFObject {
public:
    struct THandle; ///< the library's own

    explicit TPDFObject(std::shared_ptr<THandle> handle) : FHandle(std::move(handle)) {}
    virtual ~TPDFObject() = default;
    TPDFObject(const TPDFObject&) = delete;
    TPDFObject& operator=(const TPDFObject&) = delete;

    /// For the engine.
    [[nodiscard]] THandle& Handle() const { return *FHandle; }

private:
    std::shared_ptr<THandle> FHandle;
};

using TPDFObjectPtr = std::shared_ptr<TPDFObject>;

class TPDFNumeric : public TPDFObject {
public:
    using TPDFObject::TPDFObject;
};

class TPDFArray : public TPDFObject {
public:
    using TPDFObject::TPDFObject;
};

class TPDFDictionary : public TPDFObject {
public:
    using TPDFObject::TPDFObject;
    /// Sets an entry; `key` is without its slash. Takes effect at once and isn't noted as a change of the
    /// document. Raises EPDFError where the dictionary's document has gone.
    void Add(const NarrowString& key, const TPDFObjectPtr& value);
};

/// Makes objects. They belong to whatever they are put into.
class TPDFObjectsList {
public:
    [[nodiscard]] static TPDFObjectPtr NewNumeric(Double value);
    /// The items 0 to `high`.
    [[nodiscard]] static TPDFObjectPtr NewArray(const TPDFObjectPtr* items, int high);
};

/// A reference to an object of a document, which owns it: the same object has the same reference for as
/// long as it is part of the document. It publishes nothing; scripts pass it back unchanged.
class TPDFIndirect : public QObject {
    Q_OBJECT
public:
    /// The object referred to, a TPDFDictionary for a dictionary; never null.
    [[nodiscard]] const TPDFObjectPtr& Obj() const { return FObject; }
    void SetObj(TPDFObjectPtr object) { FObject = std::move(object); }

private:
    TPDFObjectPtr FObject;
};
