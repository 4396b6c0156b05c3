#pragma once
// TComponent: the base of everything that has a name and an owner.
#include "base/Reflection.h"
#include "base/Text.h"

#include <QObject>

class TComponent : public QObject {
    Q_OBJECT
public:
    /// The owner, if any, frees this component when it goes.
    explicit TComponent(TComponent* owner);
    ~TComponent() override;

    PUBLISHED(string, Name, FName);
    PUBLISHED(Int64, Tag, FTag) = 0;

    /// The components that this one owns, oldest first.
    [[nodiscard]] QList<TComponent*> Components() const;
};
