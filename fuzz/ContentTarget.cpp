// A page's content: with what closes it behind it, nothing is left open.
#include "engine/content/ContentScan.h"
#include "fuzz/Target.h"

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    const TContentBalance balance = ScanContent(content);
    for (const size_t offset : balance.ExcessRestores)
        Require(offset < size && content[offset] == 'Q', "no operator stands there");
    const TContentBalance closed = ScanContent(content + '\n' + balance.Closing);
    Require(closed.Closing.empty(), "closed content is still open");
    return 0;
}
