#include "actions/ActionClasses.h"

#include "actions/AnnotationActions.h"
#include "actions/ContentActions.h"
#include "actions/JavaScriptAction.h"
#include "actions/NavigationActions.h"
#include "actions/PageActions.h"
#include "actions/SecurityActions.h"
#include "actions/UnknownAction.h"
#include "actions/WatermarkActions.h"

void RegisterActionClasses() {
    // A new action adds its line here.
    for (const QMetaObject* type : {
             &TPDFActionEncrypt::staticMetaObject,
             &TPDFActionDecrypt::staticMetaObject,
             &TPDFActionAddFileAttachment::staticMetaObject,
             &TPDFActionAddStampAnnotation::staticMetaObject,
             &TPDFActionAddFileAttachAnnotation::staticMetaObject,
             &TPDFActionAddLinkAnnotation::staticMetaObject,
             &TPDFActionAddWebLinkAnnotation::staticMetaObject,
             &TPDFActionAddFreeTextAnnotation::staticMetaObject,
             &TPDFActionAddNoteAnnotation::staticMetaObject,
             &TPDFActionAddText::staticMetaObject,
             &TPDFActionAddImage::staticMetaObject,
             &TPDFActionImportPages::staticMetaObject,
             &TPDFActionRotatePages::staticMetaObject,
             &TPDFActionAddWatermarkDefined::staticMetaObject,
             &TPDFActionAddWatermark::staticMetaObject,
             &TPDFActionAddBatesNumbering::staticMetaObject,
             &TPDFActionInsertPages::staticMetaObject,
             &TPDFActionDeletePages::staticMetaObject,
             &TPDFActionDeletePagesEx::staticMetaObject,
             &TPDFActionExtractPages::staticMetaObject,
             &TPDFActionCropPages::staticMetaObject,
             &TPDFActionGotoPage::staticMetaObject,
             &TPDFActionGotoNextPage::staticMetaObject,
             &TPDFActionGotoPreviousPage::staticMetaObject,
             &TPDFActionGotoFirstPage::staticMetaObject,
             &TPDFActionGotoLastPage::staticMetaObject,
             &TPDFActionAddDocumentDescription::staticMetaObject,
             &TPDFActionJavaScript::staticMetaObject,
             &TPDFUnknownAction::staticMetaObject,
         })
        Reflection::RegisterClass(*type);
}
