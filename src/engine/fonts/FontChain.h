#pragma once
// The fonts of the system that serve one family and style, best first.
#include "engine/fonts/FontFace.h"
#include "engine/fonts/TextShaper.h"

#include <QHash>

#include <array>

using TFacePtr = std::shared_ptr<const TFontFace>;

/// Belongs to the thread that asked for it.
class TFontChain {
public:
    /// Stays valid until the thread asks for another. Raises Exception where no font can be used.
    [[nodiscard]] static TFontChain& Of(const string& family, int style);

    TFontChain(const string& family, int style);
    ~TFontChain();
    Q_DISABLE_COPY(TFontChain)

    /// The family's own face, or what stands in for it.
    [[nodiscard]] const TFacePtr& Main() const;
    /// The first face that has a character with all the marks that follow it; else one that has the
    /// character alone; else the main one.
    [[nodiscard]] const TFacePtr& FaceFor(QStringView cluster);

private:
    struct TCandidate;
    using TBlock = std::array<quint16, 256>; ///< index + 1 of candidates; 0 while unknown

    [[nodiscard]] size_t Search(const std::u32string& characters);
    [[nodiscard]] bool Load(TCandidate& candidate) const;
    [[nodiscard]] size_t IndexFor(QStringView cluster);

    struct TFontConfig;
    std::unique_ptr<TFontConfig> FConfig;
    std::vector<TCandidate> FCandidates;
    size_t FMain = 0;
    QHash<quint32, TBlock> FBlocks; ///< by the character's upper bits
    QHash<string, quint16> FClusters;
};

/// Whether shaping hides a character or draws it by other means, so that no font needs to have it: format
/// characters, variation selectors, and blanks other than the blank.
[[nodiscard]] bool NeedsNoGlyph(char32_t character);
