// What every value header needs: the renderer's long, and the mark of a symbol that the library exports.
#pragma once

#include <cstdint>

/// The renderer's long: a signed 32-bit integer on every platform. Ids, counts, sizes and indexes are VtLongs.
using VtLong = std::int32_t;

/// A symbol that libVantor exports and the module imports.
#define VT_API __attribute__((visibility("default")))
