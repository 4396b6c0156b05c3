#include "work/Outcome.h"

#include <cerrno>

string ReasonName(TReasonCode code) {
    switch (code) {
    case TReasonCode::DamageRepaired:
        return QLatin1String(CodeOf(TWarningKind::DamageRepaired));
    case TReasonCode::DamagePagesLost:
        return QLatin1String(CodeOf(TWarningKind::DamagePagesLost));
    case TReasonCode::DamageContent:
        return QLatin1String(CodeOf(TWarningKind::DamageContentUnreadable));
    case TReasonCode::SignatureInvalidated:
        return QLatin1String(CodeOf(TWarningKind::SignatureInvalidated));
    case TReasonCode::PermissionRefused:
        return QLatin1String(CodeOf(TWarningKind::PermissionRefused));
    case TReasonCode::FieldsLost:
        return QLatin1String(CodeOf(TWarningKind::FieldsLost));
    case TReasonCode::MetadataUnreadable:
        return QLatin1String(CodeOf(TWarningKind::MetadataUnreadable));
    case TReasonCode::ContentNotShown:
        return QLatin1String(CodeOf(TWarningKind::ContentNotShown));
    case TReasonCode::NamesUnreadable:
        return QLatin1String(CodeOf(TWarningKind::NamesUnreadable));
    case TReasonCode::ActionRaised:
        return QStringLiteral("action.raised");
    case TReasonCode::ListUnknown:
        return QStringLiteral("list.unknown");
    case TReasonCode::ScriptError:
        return QStringLiteral("script.error");
    case TReasonCode::WorkerCrashed:
        return QStringLiteral("worker.crashed");
    case TReasonCode::WorkerTimedOut:
        return QStringLiteral("worker.timed-out");
    case TReasonCode::WorkerMemory:
        return QStringLiteral("worker.memory");
    case TReasonCode::InputProtected:
        return QStringLiteral("input.protected");
    case TReasonCode::InputBusy:
        return QStringLiteral("input.busy");
    case TReasonCode::InputReplaced:
        return QStringLiteral("input.replaced");
    case TReasonCode::InputUnreadable:
        return QStringLiteral("input.unreadable");
    case TReasonCode::InputNotPdf:
        return QStringLiteral("input.not-pdf");
    case TReasonCode::InputRetried:
        return QStringLiteral("input.retried");
    case TReasonCode::LedgerUnusable:
        return QStringLiteral("ledger.unusable");
    case TReasonCode::FolderUnusable:
        return QStringLiteral("folder.unusable");
    case TReasonCode::DiskFull:
        return QStringLiteral("disk.full");
    case TReasonCode::ClaimRefused:
        return QStringLiteral("claim.refused");
    case TReasonCode::ClaimElsewhere:
        return QStringLiteral("claim.elsewhere");
    case TReasonCode::Other:
        break;
    }
    return QStringLiteral("other");
}

TReasonCode ReasonOf(TWarningKind kind) {
    switch (kind) {
    case TWarningKind::DamageRepaired:
        return TReasonCode::DamageRepaired;
    case TWarningKind::DamagePagesLost:
        return TReasonCode::DamagePagesLost;
    case TWarningKind::DamageContentUnreadable:
        return TReasonCode::DamageContent;
    case TWarningKind::SignatureInvalidated:
        return TReasonCode::SignatureInvalidated;
    case TWarningKind::PermissionRefused:
        return TReasonCode::PermissionRefused;
    case TWarningKind::FieldsLost:
        return TReasonCode::FieldsLost;
    case TWarningKind::MetadataUnreadable:
        return TReasonCode::MetadataUnreadable;
    case TWarningKind::ContentNotShown:
        return TReasonCode::ContentNotShown;
    case TWarningKind::NamesUnreadable:
        return TReasonCode::NamesUnreadable;
    }
    return TReasonCode::Other;
}

TReasonCode ReasonOfTrouble(int error, bool ofSource) {
    return error == ENOSPC || error == EDQUOT ? TReasonCode::DiskFull
           : error == LedgerTrouble           ? TReasonCode::LedgerUnusable
           : ofSource                         ? TReasonCode::InputUnreadable
                                              : TReasonCode::FolderUnusable;
}

string ReasonLine(const TReason& reason) {
    const string step = reason.Step.isEmpty() ? string() : reason.Step + QStringLiteral(": ");
    return QStringLiteral("%1: %2%3").arg(ReasonName(reason.Code), step, reason.Text);
}
