#include "base/Component.h"

TComponent::TComponent(TComponent* owner) : QObject(owner) {}
TComponent::~TComponent() = default;

QList<TComponent*> TComponent::Components() const {
    return findChildren<TComponent*>(QString(), Qt::FindDirectChildrenOnly);
}
