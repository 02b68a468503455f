// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>

#include "commands.h"

namespace fp_phone {
namespace {

constexpr size_t kMaxValue = 91;  // bytes of a property that may change
constexpr int64_t kMsPerSecond = 1000;
constexpr int64_t kEndSecond = int64_t{1} << 32;  // the log has seconds in 32 bits

template <typename Number>
std::optional<Number> Parse(std::string_view text) {
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool is_good = result.ec == std::errc() && result.ptr == text.data() + text.size();
  return is_good ? std::optional(number) : std::nullopt;
}

// The platform's rule.
bool IsPropertyName(std::string_view name) {
  const auto is_legal = [](char c) {
    return isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("._-@:").find(c) != std::string_view::npos;
  };
  return !name.empty() && name.front() != '.' && name.back() != '.' &&
         name.find("..") == name.npos && std::all_of(name.begin(), name.end(), is_legal);
}

}  // namespace

std::string CheckProperty(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == text.npos) {
    return fmt::format("\"{}\" is not NAME=VALUE", text);
  }
  const std::string name = text.substr(0, equals);
  if (!IsPropertyName(name)) {
    return fmt::format("\"{}\" is not a property name", name);
  }
  const bool is_long = text.size() - equals - 1 > kMaxValue && !name.starts_with("ro.");
  if (is_long || text.find('\n') != text.npos) {
    return fmt::format("{} has a value of more than {} bytes or several lines", name, kMaxValue);
  }
  return {};
}

std::string CheckLux(const std::string& text) {
  const float lux = Parse<float>(text).value_or(-1);
  return lux >= 0 && std::isfinite(lux) ? "" : fmt::format("\"{}\" is not a light in lux", text);
}

std::string CheckCelsius(const std::string& text) {
  const bool is_good = std::isfinite(Parse<float>(text).value_or(NAN));
  return is_good ? "" : fmt::format("\"{}\" is not a temperature", text);
}

std::optional<int64_t> ParseMoment(const std::string& text) {
  if (text.starts_with("@")) {
    const auto seconds = Parse<int64_t>(text.substr(1));
    const bool is_good = seconds && *seconds >= 0 && *seconds < kEndSecond;
    return is_good ? std::optional(*seconds * kMsPerSecond) : std::nullopt;
  }
  for (const char* const format :
       {"%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M:%S", "%Y-%m-%d %H:%M", "%Y-%m-%dT%H:%M", "%Y-%m-%d"}) {
    std::tm local = {};
    const char* const end = strptime(text.c_str(), format, &local);
    if (end == nullptr || *end != '\0') {
      continue;
    }
    const std::tm given = local;
    local.tm_isdst = -1;
    const time_t seconds = mktime(&local);
    const bool exists = local.tm_mday == given.tm_mday;  // not 31 February
    const bool is_good = exists && seconds >= 0 && seconds < kEndSecond;
    return is_good ? std::optional(seconds * kMsPerSecond) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<fp_host::TouchPanel> ParsePanel(const std::string& text) {
  const size_t x = text.find('x');
  if (x == text.npos) {
    return std::nullopt;
  }
  const uint16_t width = Parse<uint16_t>(text.substr(0, x)).value_or(0);
  const uint16_t height = Parse<uint16_t>(text.substr(x + 1)).value_or(0);
  if (width == 0 || height == 0) {
    return std::nullopt;
  }
  return fp_host::TouchPanel{.width = width, .height = height};
}

std::string Printable(const std::string& text) {
  std::string printable;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    printable += byte < ' ' || byte == '\x7f' ? fmt::format("\\x{:02x}", byte) : std::string(1, c);
  }
  return printable;
}

}  // namespace fp_phone
