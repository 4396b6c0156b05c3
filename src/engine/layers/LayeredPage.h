#pragma once
// The pages of documents: pages that layers and groups can be put on.
#include <memory>

class TZQPDFPage;
struct TPageObject;

[[nodiscard]] std::unique_ptr<TZQPDFPage> NewPage(std::unique_ptr<TPageObject> object);
