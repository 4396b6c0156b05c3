#pragma once
#include "base/Component.h"

/// What a settings dialog of an action must offer. Its class is made known with Reflection::RegisterClass
/// and has an invokable constructor that takes its owner and the action.
class TModalDialog : public TComponent {
    Q_OBJECT
public:
    using TComponent::TComponent;
    /// Shows the dialog and waits: 1 if the user confirmed.
    virtual int ShowModal() = 0;
};
