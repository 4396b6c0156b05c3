#include "engine/watermark/EditorApp.h"

#include "base/Paths.h"
#include "base/Settings.h"

string TPDFEditorApp::RepositoryFilename() {
    return ExpandEnvironment(GetEditorSettings().RepositoryFilename);
}

string TPDFEditorApp::WatermarksFolder() {
    return IncludeTrailingDelimiter(ExpandEnvironment(GetEditorSettings().WatermarksFolder));
}
