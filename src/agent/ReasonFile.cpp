#include "agent/ReasonFile.h"

#include "base/Journal.h"
#include "base/PartFile.h"

#include <QStringList>

string ReasonFileName(const string& name) {
    return name + QStringLiteral(".reason.txt");
}

void WriteReasonFile(const TFolderPtr& folder, const string& name, const QList<TReason>& reasons) noexcept {
    try {
        QStringList lines;
        for (const TReason& reason : reasons)
            lines += ReasonLine(reason);
        const QByteArray text = lines.join(u'\n').toUtf8() + '\n';
        TPartFile file(folder, ReasonFileName(name));
        file.Write(text.constData(), size_t(text.size()));
        file.PublishReplacing();
    } catch (const std::exception& e) {
        JournalLine(MessageOf(e));
    }
}
