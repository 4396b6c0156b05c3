#include "engine/content/ContentScan.h"

#include <algorithm>
#include <array>

namespace {

constexpr size_t Index(char c) {
    return static_cast<unsigned char>(c);
}

constexpr std::array<unsigned char, 256> Classes = [] {
    std::array<unsigned char, 256> classes{}; // 0 regular, 1 white space, 2 delimiter (ISO 32000-1, 7.2.2)
    for (const char c : {'\0', '\t', '\n', '\f', '\r', ' '})
        classes[Index(c)] = 1;
    for (const char c : {'(', ')', '<', '>', '[', ']', '{', '}', '/', '%'})
        classes[Index(c)] = 2;
    return classes;
}();

bool IsSpace(char c) {
    return Classes[Index(c)] == 1;
}
bool IsRegular(char c) {
    return Classes[Index(c)] == 0;
}

class TScanner {
public:
    explicit TScanner(std::string_view content) : FData(content) {}

    TContentBalance Scan() {
        while (FPos < FData.size() && !FResult.CutOff)
            Next();
        if (FResult.CutOff)
            return {{}, true, {}};
        FResult.Closing = FCutOff;
        FResult.CutOff = !FCutOff.empty();
        if (FPathOpen)
            FResult.Closing += "n\n";
        for (TKind last = Latest(); Close(last); last = Latest())
            FResult.Closing += last == State ? "Q\n" : last == TextObject ? "ET\n" : "EMC\n";
        return std::move(FResult);
    }

private:
    static constexpr size_t MostOpen = 1'000'000; // or the lists of them would outgrow the content

    enum TKind : size_t { State, TextObject, MarkedContent, Kinds };

    void Next() {
        const char c = FData[FPos];
        if (IsRegular(c)) {
            const size_t start = FPos;
            while (FPos < FData.size() && IsRegular(FData[FPos]))
                ++FPos;
            Operator(FData.substr(start, FPos - start), start);
        } else if (c == '(') {
            SkipString();
        } else if (c == '<' && FData.substr(FPos, 2) != "<<") {
            SkipPast('>');
        } else if (c == '%') {
            FPos = std::min(FData.find_first_of("\r\n", FPos), FData.size());
        } else if (c == '/') {
            ++FPos;
            while (FPos < FData.size() && IsRegular(FData[FPos]))
                ++FPos;
        } else {
            ++FPos;
        }
    }

    void SkipPast(char end) {
        const size_t found = FData.find(end, FPos);
        if (found == std::string_view::npos)
            FCutOff = std::string(1, end) + '\n';
        FPos = found == std::string_view::npos ? FData.size() : found + 1;
    }

    void SkipString() {
        int depth = 0;
        for (; FPos < FData.size(); ++FPos) {
            const char c = FData[FPos];
            if (c == '\\')
                ++FPos;
            else if (c == '(')
                ++depth;
            else if (c == ')' && --depth == 0)
                break;
        }
        if (FPos >= FData.size())
            FCutOff = std::string(size_t(depth), ')') + '\n';
        FPos = std::min(FPos + 1, FData.size());
    }

    void Operator(std::string_view word, size_t at) {
        switch (word.size()) {
        case 1:
            OneLetter(word[0], at);
            break;
        case 2:
            if (word == "BT")
                Open(TextObject);
            else if (word == "ET")
                Close(TextObject);
            else if (word == "re")
                FPathOpen = true;
            else if (word == "ID")
                SkipInlineImage();
            else if (word == "f*" || word == "B*" || word == "b*")
                FPathOpen = false;
            break;
        case 3:
            if (word == "BDC" || word == "BMC")
                Open(MarkedContent);
            else if (word == "EMC")
                Close(MarkedContent);
            break;
        default:
            break;
        }
    }

    void OneLetter(char letter, size_t at) {
        switch (letter) {
        case 'q':
            Open(State);
            break;
        case 'Q':
            if (!Close(State)) {
                FResult.ExcessRestores.push_back(at);
                FResult.CutOff = FResult.ExcessRestores.size() > MostOpen;
            }
            break;
        case 'm':
        case 'l':
        case 'c':
        case 'v':
        case 'y':
            FPathOpen = true;
            break;
        case 'S':
        case 's':
        case 'f':
        case 'F':
        case 'B':
        case 'b':
        case 'n':
            FPathOpen = false;
            break;
        default:
            break;
        }
    }

    void Open(TKind kind) {
        FOpen[kind].push_back(++FOpened);
        FResult.CutOff = FOpen[kind].size() > MostOpen;
    }

    bool Close(TKind kind) {
        if (FOpen[kind].empty())
            return false;
        FOpen[kind].pop_back();
        return true;
    }

    /// The kind of what was opened last; any if nothing is open.
    [[nodiscard]] TKind Latest() const {
        size_t latest = State;
        for (size_t kind = State; kind < Kinds; ++kind)
            if (!FOpen[kind].empty() && (FOpen[latest].empty() || FOpen[kind].back() > FOpen[latest].back()))
                latest = kind;
        return TKind(latest);
    }

    /// To behind the EI that ends the data: between white space, and followed by what looks like content
    /// and not like data (ISO 32000-1, 8.9.7 gives no length).
    void SkipInlineImage() {
        for (size_t at = FPos + 1;; ++at) {
            at = FData.find("EI", at);
            if (at == std::string_view::npos) {
                FPos = FData.size();
                FCutOff = "EI\n";
                return;
            }
            if (IsSpace(FData[at - 1]) && (at + 2 == FData.size() || IsSpace(FData[at + 2])) &&
                LooksLikeContent(at + 2)) {
                FPos = at + 2;
                return;
            }
        }
    }

    [[nodiscard]] bool LooksLikeContent(size_t from) const {
        constexpr size_t Looked = 16;
        const std::string_view ahead = FData.substr(from, Looked);
        return std::all_of(ahead.begin(), ahead.end(),
                           [](char c) { return (c >= ' ' && c < '\x7f') || (c != '\0' && IsSpace(c)); });
    }

    std::string_view FData;
    size_t FPos = 0;
    // What is open of each kind, as the numbers of its openings: one list for all would take quadratic time
    // where hostile content nests deeply.
    std::array<std::vector<size_t>, Kinds> FOpen;
    size_t FOpened = 0;
    bool FPathOpen = false;
    std::string FCutOff; // closes the string or inline image in which damaged content ends
    TContentBalance FResult;
};

} // namespace

TContentBalance ScanContent(std::string_view content) {
    return TScanner(content).Scan();
}
