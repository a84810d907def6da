#include "table.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "terminal.h"

namespace quofp {
namespace {

std::string fixed(double value, int decimals) {
  char text[400];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

// Characters of UTF-8 text: the bytes that do not continue one.
size_t display_width(const std::string& text) {
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  return text.size() - static_cast<size_t>(std::count_if(text.begin(), text.end(), continues));
}

std::string csv_field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string text(const Cell& cell, const Column& column) {
  if (const auto* value = std::get_if<std::string>(&cell)) return *value;
  if (const auto* value = std::get_if<int64_t>(&cell)) return std::to_string(*value);
  if (const auto* value = std::get_if<double>(&cell)) return fixed(*value, column.decimals);
  if (const auto* value = std::get_if<bool>(&cell)) return *value ? "yes" : "no";
  return "";
}

nlohmann::ordered_json json_object(const std::vector<Column>& columns, const std::vector<Cell>& row) {
  auto object = nlohmann::ordered_json::object();
  for (size_t i = 0; i < row.size(); i++) {
    auto& field = object[columns[i].name];
    if (const auto* number = std::get_if<double>(&row[i])) {
      if (std::isfinite(*number)) field = std::strtod(text(row[i], columns[i]).c_str(), nullptr);
    } else {
      std::visit(
          [&field](const auto& value) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(value)>, std::monostate>) field = value;
          },
          row[i]);
    }
  }
  return object;
}

// File names need not be UTF-8; what is not becomes U+FFFD instead of an error.
std::string dump(const nlohmann::ordered_json& json, int indent) {
  return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

bool is_text(const Cell& cell) { return std::holds_alternative<std::string>(cell); }

}  // namespace

std::string csv_heading(const std::vector<Column>& columns) {
  std::string line;
  for (const Column& column : columns) line += (line.empty() ? "" : ",") + column.name;
  return line;
}

std::string csv_row(const std::vector<Column>& columns, const std::vector<Cell>& row) {
  std::string line;
  for (size_t i = 0; i < row.size(); i++) line += (i == 0 ? "" : ",") + csv_field(text(row[i], columns[i]));
  return line;
}

std::string json_row(const std::vector<Column>& columns, const std::vector<Cell>& row) {
  return dump(json_object(columns, row), -1);
}

void Table::add(std::vector<Cell> row) {
  if (row.size() != columns_.size()) throw std::logic_error("a table row has another number of cells than columns");
  rows_.push_back(std::move(row));
}

void Table::print(std::ostream& out, Format format) const {
  switch (format) {
    case Format::kTable:
      return print_aligned(out);
    case Format::kCsv:
      return print_csv(out);
    case Format::kJson:
      return print_json(out);
  }
}

// Text is aligned to the left, numbers to the right, under a heading aligned like them.
void Table::print_aligned(std::ostream& out) const {
  if (rows_.empty()) return;
  std::vector<size_t> widths;
  for (const Column& column : columns_) widths.push_back(column.name.size());
  std::vector<bool> left(columns_.size(), false);
  for (const auto& row : rows_) {
    for (size_t i = 0; i < row.size(); i++) {
      widths[i] = std::max(widths[i], std::max<size_t>(1, display_width(text(row[i], columns_[i]))));
      left[i] = left[i] || is_text(row[i]);
    }
  }
  const auto print_line = [&](const auto& text_of, bool heading) {
    std::string line;
    for (size_t i = 0; i < columns_.size(); i++) {
      const std::string value = text_of(i);
      const std::string padding(widths[i] - display_width(value), ' ');
      line += (i == 0 ? "" : "  ") + (left[i] ? value + padding : padding + value);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << (heading && &out == &std::cout ? coloured(STDOUT_FILENO, kBold, line) : line) << '\n';
  };
  print_line([&](size_t i) { return columns_[i].name; }, true);
  for (const auto& row : rows_) {
    const auto value_or_dash = [&](size_t i) {
      const std::string value = text(row[i], columns_[i]);
      return value.empty() ? "-" : value;
    };
    print_line(value_or_dash, false);
  }
}

void Table::print_csv(std::ostream& out) const {
  out << csv_heading(columns_) << '\n';
  for (const auto& row : rows_) out << csv_row(columns_, row) << '\n';
}

void Table::print_json(std::ostream& out) const {
  auto array = nlohmann::ordered_json::array();
  for (const auto& row : rows_) array.push_back(json_object(columns_, row));
  out << dump(array, 2) << '\n';
}

}  // namespace quofp
