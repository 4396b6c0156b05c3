#pragma once
// TPDFActionManager: the named action lists, as `actions.xml` holds them.
#include "actions/ActionList.h"

/// One thread at a time. Two names are the same if they differ at most in the case of A to Z.
class TPDFActionManager : public QObject {
    Q_OBJECT
    XML_ROOT("ActionManager", false)
    XML_ELEMENT(ManagerActions, "ManagerActions", "ActionList")
    Q_PROPERTY(TPDFActionLists* ManagerActions READ ManagerActions CONSTANT)
    Q_PROPERTY(int Count READ Count STORED false)
public:
    /// One row of the catalogue (actions/ActionRegistry.h).
    struct TRegisteredAction {
        explicit TRegisteredAction(const QMetaObject& type) : cl(&type) {}
        const QMetaObject* cl;
        string title;            ///< for people
        string category;         ///< for people
        Integer imageIndex = -1; ///< in a host's list of images; -1 for none
    };

    [[nodiscard]] TPDFActionLists* ManagerActions() { return &FActions; }
    [[nodiscard]] int Count() const { return FActions.Count(); }
    [[nodiscard]] TPDFActionList& operator[](int index) const { return *FActions[index]; }

    /// base/UniqueName.h
    [[nodiscard]] static string UniqueFileName(const string& fn);

    /// The first list of that name, -1 if there is none.
    [[nodiscard]] Integer IndexOf(const string& actionName) const;
    /// A new list behind the others, owned by the manager. The name may be in use: the first one answers.
    TPDFActionList& AddAction(const string& actionName, const string& description);
    /// Frees the first list of that name. False if there is none.
    bool DeleteAction(const string& actionName);
    /// Runs every list of that name, not the first alone. Always false: nobody reads the result.
    bool Execute(const string& actionName, TZQPDFDocument& Document);
    void Clear();

    /// Empties the manager, then reads the file; a missing file leaves it empty. An empty name is
    /// `actions.xml` in the configuration folder. Raises what the serialiser raises.
    void Load(const string& Filename);
    /// Always writes to `actions.xml` in the configuration folder, wherever the lists were loaded from.
    void Save();

private:
    TPDFActionLists FActions;
};

/// The shared manager, loaded from the default path at its first use and never again. That first use also
/// collects the categories of the catalogue. The run has a manager of its own.
[[nodiscard]] TPDFActionManager& GetActionManager();
