#pragma once
// TPDFActions: an owning list of actions. TPDFActionList: such a list with a name, by which a folder refers
// to it, and with stored settings that belong to the file format and decide nothing here.
#include "actions/Action.h"
#include "base/ObjectList.h"

class TPDFActions : public TObjectList<TPDFAction> {
    Q_OBJECT
public:
    /// Runs the actions in order up to the first result other than 0, and returns the last result; 0 for an
    /// empty list. An exception ends the walk and passes.
    Cardinal Execute(TZQPDFDocument& Document);
    /// The position of the first action of exactly this class, -1 if there is none.
    [[nodiscard]] Integer IndexOf(const QMetaObject& AClass) const;
};

/// One entry of a list's file set.
struct TPDFActionListFile {
    Q_GADGET
public:
    FIELD(string, Filename);
    FIELD(bool, isFolder) = false;
    FIELD(bool, includeSubfolders) = false;
    bool operator==(const TPDFActionListFile&) const = default;
};
using TPDFActionListFiles = QList<TPDFActionListFile>;

class TPDFActionList : public QObject {
    Q_OBJECT
    XML_ROOT("ActionList", false)
    XML_ELEMENT(Actions, "Actions", "Action")
public:
    Q_INVOKABLE TPDFActionList();
    ~TPDFActionList() override;

    PUBLISHED(string, Name, FName);
    PUBLISHED(string, Description, FDescription);
    PUBLISHED(bool, ExecuteOnActiveDocument, FExecuteOnActiveDocument) = true;
    PUBLISHED(bool, ExecuteOnAllDocuments, FExecuteOnAllDocuments) = false;
    PUBLISHED(string, OutputFolder, FOutputFolder);
    PUBLISHED(TPDFActionListFiles, Files, FFiles);
    PUBLISHED(bool, OverwriteExistingFiles, FOverwriteExistingFiles) = false;
    /// Owned; what is written here replaces the list without freeing it.
    PUBLISHED(TPDFActions*, Actions, FActions);

    Cardinal Execute(TZQPDFDocument& Document);
    /// On each document in order, up to the first result other than 0, which is returned.
    Cardinal Execute(const QList<TZQPDFDocument*>& Documents);
    [[nodiscard]] Integer IndexOf(const QMetaObject& AClass) const;
    /// A deep copy, by way of the file format.
    void Assign(const TPDFActionList& Source);
};
using TPDFActionLists = TObjectList<TPDFActionList>;
