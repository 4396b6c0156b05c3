// Texts come back in the form that they had, but for what was edited.
#include "editor/text/TextForm.h"
#include "editor/text/LineStore.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr int TabSize = 4;

string Shown(string text) {
    return TabsToBlanks(text.replace("\r\n", "\n").replace('\r', '\n'), TabSize);
}

TEST(TextForm, KeepsTabsAndLineEndsOfWhatIsStillThere) {
    struct {
        const char* Original;
        const char* Edited;
        const char* Saved;
    } const cases[] = {
        {"a\r\nb\nc\rd", "a\nb\nc\nd", "a\r\nb\nc\rd"},
        {"a\r\n\tb\n", "a\n    bx\n", "a\r\n\tbx\n"},
        {"f('\t', 1, '\t')", "f('    ', 2, '    ')", "f('\t', 2, '\t')"},
        {"a\r\nb\r\nc\n", "a\nnew\nb\nc\n", "a\r\nnew\r\nb\r\nc\n"},
        {"a\r\nb\n\tc\r\n", "b\n    c\n", "b\n\tc\r\n"},
        {"\ta\n", "   a\n", "   a\n"}, // a tab of which a blank went
        {"\ta", "\n    a", "\n\ta"},
        {"a\r\nb", "a\nb\n", "a\r\nb\r\n"}, // a line end that was typed
        {"a\r\nb\r\n", "a\nb", "a\r\nb"},
        {"", "x\n", "x\n"},
        {"x\ty\r\n", "", ""},
    };
    for (const auto& test : cases)
        EXPECT_EQ(WithFormOf(test.Original, test.Edited, TabSize).toStdString(), test.Saved) << test.Edited;
}

TEST(TextForm, OneCharacterEditedLeavesEveryOtherAsItWas) {
    std::mt19937 random(7);
    const auto below = [&random](qsizetype limit) { return qsizetype(random() % unsigned(limit)); };
    for (int round = 0; round < 500; ++round) {
        string text;
        for (qsizetype i = below(60); i >= 0; --i) {
            const QStringList pieces{"ab", "\t", "\r\n", "\n", "\r", " ", "'", "}"};
            text += pieces[below(pieces.size())];
        }
        const qsizetype at = below(text.size());
        string changed = text;
        if (text[at] == u'\t' || text[at] == u'\r' || text[at] == u'\n')
            changed.insert(at, u'#');
        else
            changed[at] = u'#';
        if (at > 0 && text[at] == u'\n' && text[at - 1] == u'\r')
            continue; // inside a line end
        EXPECT_EQ(WithFormOf(text, Shown(changed), TabSize), changed) << round;
        // Whatever the edit, what is shown is what is saved.
        const string other = Shown(text.mid(below(text.size())) + changed.left(below(text.size())));
        EXPECT_EQ(Shown(WithFormOf(text, other, TabSize)), other) << round;
    }
}

} // namespace
