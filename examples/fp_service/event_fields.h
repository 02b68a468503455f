// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>

namespace fp_service {

// Thrown for an invalid event, with the reason. The caller adds file and line.
class InvalidEvent : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The fields of one event. RejectUnknownFields() rejects fields that nobody has read.
class Fields {
 public:
  explicit Fields(const nlohmann::json& object) : object_(object) {
    if (!object.is_object()) {
      throw InvalidEvent("an event must be a JSON object");
    }
  }

  double GetNumber(const std::string& name, double low, double high) {
    const nlohmann::json& value = Required(name);
    if (!value.is_number() || !(value >= low && value <= high)) {
      throw InvalidEvent(fmt::format("\"{}\" must be a number from {} to {}", name, low, high));
    }
    return value;
  }

  int GetInteger(const std::string& name, int low, int high) {
    const nlohmann::json& value = Required(name);
    if (!value.is_number_integer() || !(value >= low && value <= high)) {
      throw InvalidEvent(fmt::format("\"{}\" must be an integer from {} to {}", name, low, high));
    }
    return value;
  }

  int GetInteger(const std::string& name, int low, int high, int default_value) {
    return object_.contains(name) ? GetInteger(name, low, high) : default_value;
  }

  std::string GetText(const std::string& name) {
    const nlohmann::json& value = Required(name);
    if (!value.is_string()) {
      throw InvalidEvent(fmt::format("\"{}\" must be a string", name));
    }
    std::string text = value;
    if (text.size() > kMaxText) {
      throw InvalidEvent(fmt::format("\"{}\" is longer than {} bytes", name, kMaxText));
    }
    for (const char character : text) {
      if (static_cast<unsigned char>(character) < ' ' || character == '\x7f') {
        throw InvalidEvent(fmt::format("\"{}\" contains a control character", name));
      }
    }
    return text;
  }

  template <typename Value>
  Value GetOneOf(const std::string& name, const std::map<std::string, Value>& choices,
                 Value default_value) {
    if (!object_.contains(name)) {
      return default_value;
    }
    const auto choice = choices.find(GetText(name));
    if (choice == choices.end()) {
      std::string names;
      for (const auto& [key, value] : choices) {
        names += (names.empty() ? "\"" : ", \"") + key + "\"";
      }
      throw InvalidEvent(fmt::format("\"{}\" must be one of {}", name, names));
    }
    return choice->second;
  }

  void RejectUnknownFields() const {
    for (const auto& [name, value] : object_.items()) {
      if (!read_fields_.contains(name)) {
        throw InvalidEvent("unknown field " + nlohmann::json(name).dump());
      }
    }
  }

 private:
  // Longer texts would not fit into the report.
  static constexpr size_t kMaxText = 80;

  const nlohmann::json& Required(const std::string& name) {
    if (!object_.contains(name)) {
      throw InvalidEvent(fmt::format("\"{}\" is missing", name));
    }
    read_fields_.insert(name);
    return object_.at(name);
  }

  const nlohmann::json& object_;
  std::set<std::string> read_fields_;
};

}  // namespace fp_service
