// SPDX-License-Identifier: Apache-2.0
#include "output/html.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "output/output.h"

namespace fp_inspect {
namespace {

bool IsVoid(std::string_view name) { return name == "meta" || name == "br"; }

std::string ValidUtf8(std::string text) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; })) {
    return text;
  }
  using nlohmann::json;
  return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace

std::string Html::Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : ValidUtf8(Printable(std::string(text)))) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

Html Html::Style(const char* style) {
  Html tag;
  tag.markup_ = std::string("<style>") + style + "</style>";
  return tag;
}

Html Tag(const char* name, const std::vector<Html::Attribute>& attributes, const Html& content) {
  Html tag;
  std::string& markup = tag.markup_;
  markup = std::string("<") + name;
  for (const auto& [key, value] : attributes) {
    if (!value.empty()) {
      markup += std::string(" ") + key + "=\"" + Html::Escaped(value) + "\"";
    }
  }
  markup += ">" + content.Markup();
  if (!IsVoid(name)) {
    markup += std::string("</") + name + ">";
  }
  return tag;
}

Html HtmlTable(const std::string& caption, const std::vector<Html>& head,
               const std::vector<HtmlRow>& rows) {
  Html headings;
  for (const Html& heading : head) {
    headings += Tag("th", {{"scope", "col"}}, heading);
  }
  Html body;
  for (const HtmlRow& row : rows) {
    Html cells = Tag("th", {{"scope", "row"}}, row.cells.front());
    for (size_t i = 1; i < row.cells.size(); ++i) {
      cells += Tag("td", row.cells[i]);
    }
    body += Tag("tr", {{"class", row.classes}}, cells);
  }
  return Tag("table",
             Tag("caption", caption) + Tag("thead", Tag("tr", headings)) + Tag("tbody", body));
}

}  // namespace fp_inspect
