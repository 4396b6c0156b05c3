#include "work/Outcome.h"

string ReasonName(TReasonCode code) {
    switch (code) {
    case TReasonCode::DamageRepaired:
        return QStringLiteral("damage.repaired");
    case TReasonCode::DamagePagesLost:
        return QStringLiteral("damage.pages-lost");
    case TReasonCode::DamageContent:
        return QStringLiteral("damage.content-unreadable");
    case TReasonCode::SignatureInvalidated:
        return QStringLiteral("signature.invalidated");
    case TReasonCode::PermissionRefused:
        return QStringLiteral("permission.refused");
    case TReasonCode::ActionRaised:
        return QStringLiteral("action.raised");
    case TReasonCode::ListUnknown:
        return QStringLiteral("list.unknown");
    case TReasonCode::WorkerCrashed:
        return QStringLiteral("worker.crashed");
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
