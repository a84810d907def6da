#include "report/page.h"

#include <stdexcept>
#include <string_view>

#include "report/assets.h"

namespace quofp {
namespace {

// Appends what a placeholder of the page stands for.
void append_part(std::string& page, std::string_view name, const Json& data, const std::vector<std::string>& details) {
  if (name == "style") {
    page += assets::kStyle;
  } else if (name == "script") {
    page += assets::kScript;
  } else if (name == "data") {
    page += embedded_json(data);
  } else if (name == "details") {
    for (size_t i = 0; i < details.size(); i++) {
      if (details[i].empty()) continue;
      page += "<script type=\"application/json\" id=\"frame-" + std::to_string(i) + "\">" + details[i] + "</script>\n";
    }
  } else {
    throw std::logic_error("the page of the report has an unknown placeholder");
  }
}

}  // namespace

// A script element ends at "</script" and changes its rules at "<!--", in strings too: no "<" remains.
std::string embedded_json(const Json& json) {
  const std::string plain = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string text;
  text.reserve(plain.size());
  for (const char c : plain) {
    if (c == '<') {
      text += "\\u003c";
    } else {
      text += c;
    }
  }
  return text;
}

std::string report_page(const Json& data, const std::vector<std::string>& details) {
  std::string page;
  std::string_view rest = assets::kPage;
  for (size_t open = rest.find("{{"); open != std::string_view::npos; open = rest.find("{{")) {
    const size_t close = rest.find("}}", open);
    page += rest.substr(0, open);
    append_part(page, rest.substr(open + 2, close - open - 2), data, details);
    rest.remove_prefix(close + 2);
  }
  page += rest;
  return page;
}

}  // namespace quofp
