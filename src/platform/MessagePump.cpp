#include "platform/MessagePump.h"

#include "base/Exceptions.h"
#include "base/Journal.h"
#include "platform/MessageQueue.h"

#include <QSocketNotifier>

TMessagePump::TMessagePump() {
    auto queue = TMessageQueue::OfThisThread();
    const int descriptor = queue->Descriptor();
    Watch(descriptor, [queue = std::move(queue)] { queue->Deliver(); });
}

void TMessagePump::Watch(int descriptor, std::function<void()> ready) {
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [call = std::move(ready)] {
        try {
            call();
        } catch (const std::exception& e) {
            JournalLine(QStringLiteral("Unhandled exception: %1").arg(MessageOf(e)));
        }
    });
}
