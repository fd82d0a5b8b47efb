#include "support/denied_allocator.h"
