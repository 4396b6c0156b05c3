// Keys on their way from the desktop to the control.
#include "MemoFixture.h"

namespace {

TEST_F(MemoWindowTest, TypedTextArrives) {
    Type("var a;");
    Key(Qt::Key_Home);
    Type("// ");
    EXPECT_EQ(Text(), "// var a;\n");
}

} // namespace
