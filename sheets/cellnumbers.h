#pragma once

#include "engine/numbertext.h"

namespace sheets {

// The sheets read and write cell numbers with the engine's helpers.
using engine::generalText15;
using engine::generalText7;
using engine::leadingNumber;

}  // namespace sheets
