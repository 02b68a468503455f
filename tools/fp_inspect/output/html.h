// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace fp_inspect {

// Markup of HTML or SVG. Only Tag() makes an element, and every text and attribute is escaped on
// its way in, so nothing that an input contains becomes markup.
class Html {
 public:
  Html() = default;
  template <typename Chars>
  requires std::is_convertible_v<Chars, std::string_view> Html(const Chars& text)
      : markup_(Escaped(text)) {}  // NOLINT: implicit, a text is content

  // The one way around the escaping, for a style that is part of the program.
  static Html Style(const char* style);

  const std::string& Markup() const { return markup_; }
  bool IsEmpty() const { return markup_.empty(); }
  Html& operator+=(const Html& other) {
    markup_ += other.markup_;
    return *this;
  }
  friend Html operator+(Html a, const Html& b) { return a += b; }

 private:
  using Attribute = std::pair<const char*, std::string>;
  friend Html Tag(const char* name, const std::vector<Attribute>& attributes, const Html& content);

  // Control characters become '?', and bytes that are not UTF-8 become U+FFFD.
  static std::string Escaped(std::string_view text);

  std::string markup_;
};

// An attribute with an empty value is left out.
Html Tag(const char* name, const std::vector<std::pair<const char*, std::string>>& attributes,
         const Html& content = {});
inline Html Tag(const char* name, const Html& content) { return Tag(name, {}, content); }

// A table: the first cell of a row is its heading. `classes` of a row may be empty.
struct HtmlRow {
  std::vector<Html> cells;
  std::string classes = {};
};
Html HtmlTable(const std::string& caption, const std::vector<Html>& head,
               const std::vector<HtmlRow>& rows);

}  // namespace fp_inspect
