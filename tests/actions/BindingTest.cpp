// The binding by names: its four outcomes come out of the mechanism alone.
#include "actions/Binding.h"
#include "actions/Action.h"
#include "actions/ActionClasses.h"
#include "actions/ModalDialog.h"
#include "actions/NavigationActions.h"
#include "actions/PageActions.h"
#include "base/Exceptions.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

/// Notes the calls that reach it.
class TReceiver : public QObject {
    Q_OBJECT
public:
    Q_INVOKABLE bool Measure(double X, const TFileName& fileName, int Count) {
        Calls.append(
            QStringLiteral("Measure %1 %2 %3").arg(QString::number(X, 'g', 17), fileName).arg(Count));
        return false; // a refusal stops nothing
    }
    Q_INVOKABLE void Sign(const string& name, Int64 tag) { Calls.append(name + u'/' + QString::number(tag)); }
    Q_INVOKABLE void Lack(int Known, int AWidth, int Later) {
        Calls.append(QString::number(Known + AWidth + Later));
    }
    Q_INVOKABLE void Fail() { throw Exception("from the method"); }
    QStringList Calls;
};

class TPDFActionMeasure : public TPDFAction {
    Q_OBJECT
public:
    PUBLISHED(Single, x, Fx) = 0.1F; // binds to "X", widened
    PUBLISHED(string, FileName, FName) = "a.pdf";
    FIELD(int, Count) = 3;
};
class TPDFActionSign : public TPDFAction {
    Q_OBJECT
public:
    PUBLISHED(string, FileName, FFileName) = "not used";
};
class TPDFActionLack : public TPDFAction {
    Q_OBJECT
public:
    PUBLISHED(int, Known, FKnown) = 1;
    PUBLISHED(int, Width, FWidth) = 2;
    PUBLISHED(int, Later, FLater) = 3;
};
class TPDFActionFail : public TPDFAction {
    Q_OBJECT
};
class TPDFActionNowhere : public TPDFAction {
    Q_OBJECT
};
/// The prefix is not checked: the first ten characters are skipped.
class TElsewhereSign : public TPDFAction {
    Q_OBJECT
public:
    TElsewhereSign() { FName = "by position"; }
};

class Binding : public testing::Test {
protected:
    QStringList Run(const TPDFAction& action) {
        InvokeByClassName(action, TReceiver::staticMetaObject, [this]() -> QObject& { return FReceiver; });
        return FReceiver.Calls;
    }
    TReceiver FReceiver;
};

TEST_F(Binding, EveryParameterFindsItsMember) {
    EXPECT_EQ(Run(TPDFActionMeasure()), QStringList("Measure 0.10000000149011612 a.pdf 3"));
}

TEST_F(Binding, AParameterMayFindTheInheritedNameAndTag) {
    TPDFActionSign action;
    action.FName = "Approved";
    action.FTag = 7;
    EXPECT_EQ(Run(action), QStringList("Approved/7"));
}

TEST_F(Binding, NoMethodOfThatNameIsASilentSuccess) {
    EXPECT_TRUE(Run(TPDFActionNowhere()).isEmpty());
    EXPECT_TRUE(Run(TPDFAction()).isEmpty()) << "the base class has an empty method name";
}

TEST_F(Binding, AParameterWithoutSourceRaisesBeforeTheCall) {
    EXPECT_EQ(RaisedBy([&] { Run(TPDFActionLack()); }),
              "TPDFAction.Execute invalid propert/parameter name AWidth");
    EXPECT_TRUE(FReceiver.Calls.isEmpty());
}

TEST_F(Binding, ExceptionsOfTheMethodPass) {
    EXPECT_EQ(RaisedBy([&] { Run(TPDFActionFail()); }), "from the method");
}

TEST_F(Binding, PrefixIsNotChecked) {
    EXPECT_EQ(Run(TElsewhereSign()), QStringList("by position/0"));
}

/// A settings dialog as a host would supply it.
class TFrmPDFRotatePages : public TModalDialog {
    Q_OBJECT
public:
    Q_INVOKABLE TFrmPDFRotatePages(TComponent* owner, TPDFAction* action)
        : TModalDialog(owner), FAction(qobject_cast<TPDFActionRotatePages*>(action)) {}
    int ShowModal() override {
        FAction->FAngle = 180;
        return Result;
    }
    static inline int Result = 1;

private:
    TPDFActionRotatePages* FAction;
};

TEST(Config, LooksTheDialogUpByName) {
    TPDFActionCropPages crop;
    EXPECT_EQ(RaisedBy([&] { crop.Config(); }), "[TPDFAction.Config]: Class not found TFrmPDFCropPages");
    Reflection::RegisterClass(TFrmPDFRotatePages::staticMetaObject);
    TPDFActionRotatePages rotate;
    EXPECT_TRUE(rotate.Config());
    EXPECT_EQ(rotate.FAngle, 180);
    TFrmPDFRotatePages::Result = 2;
    EXPECT_FALSE(rotate.Config());
    EXPECT_TRUE(TPDFActionGotoNextPage().Config()) << "needs no dialog";
    EXPECT_THROW(TPDFActionGotoPage().Config(), Exception);
}

TEST(CreateInstance, MakesAnActionWithItsDefaults) {
    const auto action = TPDFAction::CreateInstance(TPDFActionInsertPages::staticMetaObject);
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->property("width").toFloat(), 595.0F);
    EXPECT_EQ(action->property("Count").toInt(), 1);
    EXPECT_EQ(TPDFAction::CreateInstance(TReceiver::staticMetaObject), nullptr);
}

TEST(FormHelpers, MoveNothing) {
    TPDFActionRotatePages action;
    TComponent form(nullptr);
    auto* component = new TComponent(&form);
    component->FName = "property_Document";
    action.PropertiesToFormFields(form);
    action.FormdFieldsToProperties(form);
    EXPECT_EQ(action.FAngle, 90);
    EXPECT_EQ(component->FName, "property_Document");
}

#include "BindingTest.moc"
