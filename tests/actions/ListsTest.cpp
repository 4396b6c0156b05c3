// Action lists and the manager: names, order, stopping.
#include "actions/ActionManager.h"
#include "actions/NavigationActions.h"
#include "actions/PageActions.h"
#include "engine/document/Document.h"
#include "testing/Workspace.h"

namespace {

/// An action that answers what it is told and counts its runs.
class TAnswering : public TPDFAction {
public:
    TAnswering(int& runs, Cardinal answer) : FRuns(runs), FAnswer(answer) {}
    Cardinal Execute(TZQPDFDocument&) override {
        ++FRuns;
        return FAnswer;
    }

private:
    int& FRuns;
    Cardinal FAnswer;
};

} // namespace

TEST(Manager, NamesFoldAsciiOnlyAndTheFirstOneAnswers) {
    TPDFActionManager manager;
    EXPECT_EQ(manager.IndexOf("Merge"), -1);
    manager.AddAction("Merge", "first");
    manager.AddAction("MERGE", "second");
    manager.AddAction("Größe", "");
    manager.AddAction("", "nameless");
    EXPECT_EQ(manager.IndexOf("merge"), 0);
    EXPECT_EQ(manager.IndexOf("GRößE"), 2);
    EXPECT_EQ(manager.IndexOf("GRÖßE"), -1) << "another letter, not another case";
    EXPECT_EQ(manager.IndexOf(""), 3);
    EXPECT_TRUE(manager.DeleteAction("mErge"));
    EXPECT_EQ(manager[0].FDescription, "second");
    EXPECT_FALSE(manager.DeleteAction("none"));
    EXPECT_EQ(manager.Count(), 3);
}

TEST(Manager, ExecuteRunsEveryListOfTheName) {
    TPDFActionManager manager;
    int runs = 0;
    for (const char* name : {"a", "b", "A"})
        manager.AddAction(name, "").FActions->Add(std::make_unique<TAnswering>(runs, 1));
    TZQPDFDocument document(nullptr);
    manager.Execute("a", document);
    EXPECT_EQ(runs, 2);
}

TEST(List, StopsAtTheFirstResultThatIsNotZero) {
    TPDFActionList list;
    int runs = 0;
    for (const Cardinal answer : {0U, 7U, 0U})
        list.FActions->Add(std::make_unique<TAnswering>(runs, answer));
    TZQPDFDocument document(nullptr);
    EXPECT_EQ(list.Execute(document), 7U);
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(list.Execute(QList<TZQPDFDocument*>{&document, &document}), 7U);
    EXPECT_EQ(runs, 4) << "the second document was begun";
    EXPECT_EQ(TPDFActionList().Execute(document), 0U);
}

TEST(List, IndexOfWantsTheExactClass) {
    TPDFActionList list;
    list.FActions->Add(std::make_unique<TPDFActionGotoPage>());
    list.FActions->Add(std::make_unique<TPDFActionRotatePages>());
    EXPECT_EQ(list.IndexOf(TPDFActionRotatePages::staticMetaObject), 1);
    EXPECT_EQ(list.IndexOf(TPDFAction::staticMetaObject), -1);
}
