#pragma once
// TStringList: an ordered list of texts with an object slot per line, update brackets, and files.
//
// Files are read as UTF-8 unless a mark at their beginning says UTF-16; CR, LF and CR LF end a line. They
// are written as UTF-8 without a mark, every line ended by a line feed.
#include "editor/text/LineProp.h"

#include <functional>
#include <vector>

class QIODevice;

class TStringList {
public:
    using TNotifyEvent = std::function<void()>;

    TStringList() = default;
    virtual ~TStringList() = default;
    TStringList(const TStringList&) = delete;
    TStringList& operator=(const TStringList&) = delete;

    TNotifyEvent OnChange;   ///< after a change, or at the end of an update bracket
    TNotifyEvent OnChanging; ///< before a change, or at the start of an update bracket

    [[nodiscard]] int Count() const { return int(FItems.size()); }
    /// An index out of range raises Exception, here and in every operation that doesn't say otherwise.
    [[nodiscard]] const string& Get(int index) const;
    [[nodiscard]] const string& operator[](int index) const { return Get(index); }
    [[nodiscard]] virtual TLineObject* GetObject(int index) const;
    virtual void PutObject(int index, TLineObject* object);

    /// Each returns the index of the last line that it added.
    virtual int Add(const string& text);
    virtual int AddObject(const string& text, TLineObject* object);
    virtual void AddStrings(const TStringList& list);
    virtual void Insert(int index, const string& text);
    virtual void Delete(int index);
    virtual void Put(int index, const string& text);
    virtual void Clear();
    virtual void Assign(const TStringList& list);

    /// File errors raise EFileError and leave the lines as they are.
    virtual void LoadFromFile(const string& name);
    virtual void LoadFromStream(QIODevice& stream);
    /// The file appears whole or not at all.
    virtual void SaveToFile(const string& name);
    virtual void SaveToStream(QIODevice& stream);

    /// Another number after every change.
    [[nodiscard]] unsigned Revision() const { return FRevision; }

    /// All lines, each ended by a line feed.
    [[nodiscard]] string Text() const;
    /// Replaces all lines through Clear and Add.
    void SetText(QStringView text);

    /// Brackets nest; the events come at the outermost ends only.
    void BeginUpdate();
    void EndUpdate();

protected:
    /// The outermost update bracket opens or closes.
    virtual void SetUpdateState(bool updating);
    void Changing();
    void Changed();
    [[nodiscard]] TLineObject* Slot(int index) const { return FItems[size_t(index)].Object; }
    void SetSlot(int index, TLineObject* object) { FItems[size_t(index)].Object = object; }
    static void CheckIndex(int index, int end);
    /// The list operations themselves, with their events and nothing else.
    int RawAdd(const string& text, TLineObject* object);
    void RawInsert(int index, const std::vector<string>& lines);
    void RawDelete(int index, int count = 1);
    void RawPut(int index, const string& text);
    void RawClear();

private:
    struct TItem {
        string Text;
        TLineObject* Object = nullptr;
    };
    std::vector<TItem> FItems;
    int FUpdateCount = 0;
    unsigned FRevision = 0;
};

/// Opens an update bracket and closes it on every way out.
class TStringsUpdate {
public:
    explicit TStringsUpdate(TStringList& list) : FList(list) { FList.BeginUpdate(); }
    ~TStringsUpdate() { FList.EndUpdate(); }
    TStringsUpdate(const TStringsUpdate&) = delete;
    TStringsUpdate& operator=(const TStringsUpdate&) = delete;

private:
    TStringList& FList;
};

/// The lines of a text that CR, LF and CR LF end. A line without an end counts, an empty rest doesn't.
[[nodiscard]] std::vector<QStringView> SplitLines(QStringView text);
