#pragma once
// TTextSearch: finds and replaces in the control's text. Expressions may span lines; ^ and $ stand at the
// ends of each.
//
// The matches of the whole text are found once per text and query, as far as the caps allow; beyond them the
// search goes on from where it is needed.
#include "editor/history/UndoTarget.h"
#include "editor/text/ColumnRange.h"
#include "editor/text/JoinedText.h"

#include <QRegularExpression>

class TMemoEditor;

struct TSearchQuery {
    string Text;
    bool MatchCase = false;
    bool WholeWords = false; ///< a match begins and ends where a word does
    bool Expression = false; ///< a regular expression, in Perl's syntax
    bool WrapAround = true;  ///< goes on at the other end of the text
    bool operator==(const TSearchQuery&) const = default;
};

/// Offsets in the joined text.
struct TTextMatch {
    int From = 0;
    int Length = 0;
    [[nodiscard]] int End() const { return From + Length; }
    bool operator==(const TTextMatch&) const = default;
};

/// What is known of all matches.
struct TMatchCount {
    int Count = 0;
    bool Capped = false; ///< there may be more
    int Current = 0;     ///< which of them is selected, from 1; 0 for none
};

enum class TFound { No, Yes, Wrapped };

class TTextSearch {
public:
    static constexpr int MostCounted = 9999;

    explicit TTextSearch(TMemoEditor& memo) : FMemo(memo) {}

    /// Milliseconds that listing the matches may take: it happens at every key typed into a search box.
    int MostTime = 40;

    void SetQuery(const TSearchQuery& query);
    /// Why the expression can't be searched; empty if it can.
    [[nodiscard]] const string& Error() const { return FError; }
    [[nodiscard]] int ErrorColumn() const { return FErrorColumn; } ///< from 1; 0 for no place

    /// Each selects what it finds, with the caret behind it, and opens the folds around.
    TFound FindNext();
    TFound FindPrevious();
    /// The first match that begins at or behind `offset`: what a search box selects as its text is typed.
    TFound FindFrom(int offset);
    /// The offset at which the selection begins, or else of the caret.
    [[nodiscard]] int Anchor();

    [[nodiscard]] TMatchCount Count();
    /// The columns of `row` that matches cover.
    [[nodiscard]] std::vector<TColumnRange> ColumnsOf(int row);

    /// Replaces the selection if it is a match, and finds the next one. In the text for an expression \1 or
    /// $1 stand for its groups, \0 or $0 for the match, \n and \t for line break and tab.
    TFound Replace(const string& by);
    /// Replaces all matches, as one undo step with the caret kept. Returns how many there were.
    int ReplaceAll(const string& by);

private:
    [[nodiscard]] bool Update();
    void FindMatches();
    [[nodiscard]] bool IsThrough(const QRegularExpressionMatchIterator& all, int end) const;
    [[nodiscard]] QRegularExpressionMatchIterator MatchesFrom(int offset) const;
    [[nodiscard]] QRegularExpressionMatch MatchAt(int offset);
    [[nodiscard]] static TTextMatch Range(const QRegularExpressionMatch& match);
    [[nodiscard]] bool FirstFrom(int offset, TTextMatch& match);
    [[nodiscard]] bool LastBefore(int offset, TTextMatch& match);
    [[nodiscard]] std::vector<TColumnRange> ColumnsOfRowAlone(int row) const;
    [[nodiscard]] TTextMatch Selected() const;
    void Select(const TTextMatch& match);
    [[nodiscard]] string Expanded(const string& by, const QRegularExpressionMatch& match) const;
    [[nodiscard]] string Replacement(const string& by, const QRegularExpressionMatch& match) const;
    [[nodiscard]] TSelectionRange RangeFromLineStart(const TTextMatch& match) const;
    [[nodiscard]] bool MayReplace() const;
    void Fail(const string& text, int column);
    void FailForWork();

    TMemoEditor& FMemo;
    TJoinedText FText;
    TSearchQuery FQuery;
    QRegularExpression FPattern;
    string FSubject;     // the text, fit for matching
    bool FFresh = false; // FMatches are those of FText and FPattern
    bool FWhole = false; // and all of them
    std::vector<TTextMatch> FMatches;
    string FError;
    int FErrorColumn = 0;
};
