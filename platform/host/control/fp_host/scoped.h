// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace fp_host {

// Base of the Scoped... objects: the constructor changes something of the phone, and the destructor
// ends the change. Except ScopedProperty they do not nest: of two objects that change the same
// thing, the one that is destroyed first ends both changes.
class [[nodiscard]] Scoped {
 public:
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;

 protected:
  Scoped() = default;
  ~Scoped() = default;
};

}  // namespace fp_host
