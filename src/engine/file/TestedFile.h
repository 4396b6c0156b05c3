#pragma once
// A file that was opened to test it, for the opening that mostly follows.
#include "base/Text.h"

#include <memory>

struct TPDFSource;

/// What a test of a file leaves to whoever goes on to open it, which then needn't read it again. Holds the
/// file open.
class TTestedFile {
public:
    void Keep(std::shared_ptr<TPDFSource> source) { FSource = std::move(source); }

    /// Gives the file away. Null if nothing was kept, if path or password are others, or if the file has
    /// changed since. With a `descriptor` other than TFileInput::NotOpen that is asked of the file behind it.
    [[nodiscard]] std::shared_ptr<TPDFSource> Take(const string& path, const NarrowString& password,
                                                   int descriptor);

private:
    std::shared_ptr<TPDFSource> FSource;
};
