// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <istream>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "fp_utils/shapes.h"
#include "reference/plain_geometry.h"

namespace fp_reference {

using AnyShape =
    std::variant<android::fp_utils::Circle, android::fp_utils::Ellipse, android::fp_utils::Rect>;

const android::fp_utils::IShape& AsShape(const AnyShape& shape);

// The same shape as a class that the library does not know.
std::unique_ptr<android::fp_utils::IShape> AsPlainShape(const AnyShape& shape);

// Every float of a shape, in the order of its constructor.
std::vector<float*> FieldsOf(AnyShape& shape);

// A shape in the form of golden/coverage.txt: its name and its fields. TextOf() writes the fields
// in hexadecimal.
std::string TextOf(AnyShape shape);
AnyShape ReadShape(std::istream& in);

// Counts with the library.
PlainCounts CountIn(const android::fp_utils::Rect& grid, const android::fp_utils::IShape& s1,
                    const android::fp_utils::IShape& s2);

}  // namespace fp_reference
