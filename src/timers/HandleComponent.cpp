#include "timers/HandleComponent.h"

TumHandleComponent::TumHandleComponent(TComponent* owner, TDesigning designing) : TComponent(owner) {
    if (designing == TDesigning::No)
        FHandle = std::make_unique<THiddenWindow>([this](TMessage& message) { WndProc(message); });
}

TumHandleComponent::~TumHandleComponent() = default;

void TumHandleComponent::WndProc(TMessage& message) {
    if (message.Number == WM_QUERYENDSESSION)
        message.Result = 1;
    else
        DefWindowProc(message);
}
