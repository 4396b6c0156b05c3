#pragma once
// The simple values of an action, those within its records and objects too, by their paths.
#include "actions/Action.h"
#include "xml/Instance.h"
#include "xml/Lexical.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <functional>

struct TLeaf {
    string Path; ///< as "bates/FontSize"
    QVariant Value;
    bool operator==(const TLeaf&) const = default;
};

/// Walks the leaves in the order of files; what `visit` leaves in a value is put back.
inline void WalkLeaves(TInstance instance, const string& before,
                       const std::function<void(const string& path, QVariant& value)>& visit) {
    for (const QMetaProperty& member : Reflection::Members(instance.Type())) {
        const string path = before + QString::fromLatin1(member.name());
        QVariant value = instance.Get(member);
        switch (KindOf(member)) {
        case MemberKind::Simple:
            visit(path, value);
            instance.Set(member, value);
            break;
        case MemberKind::Record:
            WalkLeaves(TInstance(value), path + u'/', visit);
            instance.Set(member, value);
            break;
        case MemberKind::Object:
            WalkLeaves(TInstance(*instance.Held(member)), path + u'/', visit);
            break;
        default:
            ADD_FAILURE() << path.toStdString() << " is neither a value nor a record";
        }
    }
}

inline QList<TLeaf> LeavesOf(TPDFAction& action) {
    QList<TLeaf> leaves;
    WalkLeaves(TInstance(action), {}, [&leaves](const string& path, const QVariant& value) {
        leaves.append({path, value});
    });
    return leaves;
}
