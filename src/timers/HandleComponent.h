#pragma once
// TumHandleComponent: a component with a hidden window of its own.
#include "base/Component.h"
#include "platform/HiddenWindow.h"

#include <memory>

class TumHandleComponent : public TComponent {
    Q_OBJECT
public:
    ~TumHandleComponent() override;
    /// 0 on a designer's form.
    [[nodiscard]] TWindowHandle Handle() const { return FHandle ? FHandle->Handle() : 0; }

protected:
    TumHandleComponent(TComponent* owner, TDesigning designing);
    /// Receives the window's messages on the thread that made the component. Never holds up the end of the
    /// session; what it doesn't know goes to DefWindowProc.
    virtual void WndProc(TMessage& message);

private:
    std::unique_ptr<THiddenWindow> FHandle;
};
