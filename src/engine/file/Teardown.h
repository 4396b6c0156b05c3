#pragma once
// Freeing the objects of a large document takes as long as reading them; nobody needs to wait for it.
#include <memory>

/// Drops `object` on a thread of its own, soon. What is left at process exit is freed there.
void DisposeLater(std::shared_ptr<void> object);
