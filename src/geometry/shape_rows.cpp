// SPDX-License-Identifier: Apache-2.0
#include "geometry/shape_rows.h"

#include <cstring>

namespace android::fp_utils {
namespace {

// Tells classes apart by their tables of virtual functions, of which the library holds the only
// copy for its own. Their run-time types would need a caller built with such types: what is without
// leaves a null there.
const void* VirtualTable(const IShape& shape) {
  const void* table = nullptr;
  memcpy(&table, static_cast<const void*>(&shape), sizeof table);
  return table;
}

template <typename Known>
const Known* As(const IShape& shape) {
  return VirtualTable(shape) == VirtualTable(Known()) ? static_cast<const Known*>(&shape) : nullptr;
}

}  // namespace

std::optional<ShapeRows> KnownRows(const IShape& shape) {
  if (const auto* circle = As<Circle>(shape)) {
    return CircleRows(*circle);
  }
  if (const auto* ellipse = As<Ellipse>(shape)) {
    return EllipseRows(*ellipse);
  }
  if (const auto* rect = As<Rect>(shape)) {
    return RectRows(*rect);
  }
  return std::nullopt;
}

}  // namespace android::fp_utils
