#include "base/ObjectList.h"
