#include "canvas.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <stdexcept>
#include <string_view>

#include "failure.h"

namespace quofp {
namespace {

constexpr int kMaxPictureSide = 32767;  // of a Cairo image surface

cairo_surface_t* make_surface(int width, int height) {
  if (width < 1 || height < 1 || width > kMaxPictureSide || height > kMaxPictureSide) {
    throw Failure(Exit::kInputOutput,
                  "a picture of " + std::to_string(width) + "x" + std::to_string(height) + " pixels cannot be drawn");
  }
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
  return surface;
}

cairo_status_t append_bytes(void* sink, const unsigned char* bytes, unsigned int count) {
  auto& out = *static_cast<std::vector<uint8_t>*>(sink);
  out.insert(out.end(), bytes, bytes + count);
  return CAIRO_STATUS_SUCCESS;
}

std::string tick_label(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

// Length of the well-formed UTF-8 character that the text begins with, 0 when there is none.
size_t character_length(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(0) < 0x80) return 1;
  const size_t length = byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : 4;
  constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};  // a longer form of a smaller value is malformed
  if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length) return 0;
  uint32_t value = byte(0) & (0x7FU >> length);
  for (size_t i = 1; i < length; i++) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    value = value << 6 | (byte(i) & 0x3FU);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  return value < kSmallest[length] || value > 0x10FFFF || surrogate ? 0 : length;
}

// Cairo draws nothing more once it has met text that is not UTF-8, and file names need not be. What is not becomes
// question marks.
std::string well_formed(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const size_t length = character_length(text);
    result += length == 0 ? "?" : text.substr(0, length);
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return result;
}

}  // namespace

Colour heat_colour(double value) {
  // Nine points of the viridis map by S. van der Walt and N. Smith, joined by straight lines.
  static constexpr Colour kPoints[] = {{0.267, 0.005, 0.329}, {0.283, 0.141, 0.458}, {0.254, 0.265, 0.530},
                                       {0.207, 0.372, 0.553}, {0.164, 0.471, 0.558}, {0.128, 0.567, 0.551},
                                       {0.267, 0.679, 0.480}, {0.478, 0.821, 0.318}, {0.993, 0.906, 0.144}};
  constexpr int kSpans = static_cast<int>(std::size(kPoints)) - 1;
  const double position = std::isnan(value) ? 0 : std::clamp(value, 0.0, 1.0) * kSpans;
  const int span = std::min(static_cast<int>(position), kSpans - 1);
  const double t = position - span;
  const Colour &a = kPoints[span], &b = kPoints[span + 1];
  return {a.red + t * (b.red - a.red), a.green + t * (b.green - a.green), a.blue + t * (b.blue - a.blue)};
}

void Canvas::Release::operator()(cairo_t* context) const { cairo_destroy(context); }
void Canvas::Release::operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }

Canvas::Canvas(int width, int height, Colour background)
    : surface_(make_surface(width, height)), context_(cairo_create(surface_.get())) {
  set_colour(background);
  cairo_paint(context_.get());
}

Canvas::Canvas(const Frame& frame, int zoom) : Canvas(frame.width * zoom, frame.height * zoom) {
  draw_frame(frame, 0, 0, zoom);
}

Canvas::~Canvas() = default;
Canvas::Canvas(Canvas&& other) noexcept = default;
Canvas& Canvas::operator=(Canvas&& other) noexcept = default;

int Canvas::width() const { return cairo_image_surface_get_width(surface_.get()); }
int Canvas::height() const { return cairo_image_surface_get_height(surface_.get()); }

void Canvas::set_colour(Colour colour) {
  cairo_set_source_rgba(context_.get(), colour.red, colour.green, colour.blue, colour.opacity);
}

// Written straight into the picture's memory: exact levels, no filter.
void Canvas::draw_frame(const Frame& frame, int x, int y, int zoom) {
  cairo_surface_flush(surface_.get());
  uint8_t* const data = cairo_image_surface_get_data(surface_.get());
  const int stride = cairo_image_surface_get_stride(surface_.get());
  const int right = std::min(width(), x + frame.width * zoom), bottom = std::min(height(), y + frame.height * zoom);
  for (int row = std::max(y, 0); row < bottom; row++) {
    auto* const pixels = reinterpret_cast<uint32_t*>(data + static_cast<ptrdiff_t>(row) * stride);
    for (int column = std::max(x, 0); column < right; column++) {
      pixels[column] = frame.at((column - x) / zoom, (row - y) / zoom) * 0x010101U;
    }
  }
  cairo_surface_mark_dirty(surface_.get());
}

void Canvas::draw_picture(const Canvas& picture, int x, int y) {
  cairo_set_source_surface(context_.get(), picture.surface_.get(), x, y);
  cairo_pattern_set_filter(cairo_get_source(context_.get()), CAIRO_FILTER_NEAREST);
  cairo_paint(context_.get());
}

void Canvas::draw_marks(std::span<const uint8_t> marks, int32_t width, int32_t height, int x, int y, int zoom,
                        Colour colour) {
  set_colour(colour);
  cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_NONE);
  for (int32_t row = 0; row < height; row++) {
    for (int32_t column = 0; column < width; column++) {
      if (marks[static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(column)] == 0) continue;
      cairo_rectangle(context_.get(), x + column * zoom, y + row * zoom, zoom, zoom);
    }
    cairo_fill(context_.get());
  }
  cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_DEFAULT);
}

void Canvas::draw_line(double x0, double y0, double x1, double y1, Colour colour, double thickness) {
  set_colour(colour);
  cairo_set_line_width(context_.get(), thickness);
  cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_ROUND);
  cairo_move_to(context_.get(), x0, y0);
  cairo_line_to(context_.get(), x1, y1);
  cairo_stroke(context_.get());
}

void Canvas::draw_circle(double x, double y, double radius, Colour colour, double thickness) {
  set_colour(colour);
  cairo_set_line_width(context_.get(), thickness);
  cairo_new_sub_path(context_.get());
  cairo_arc(context_.get(), x, y, radius, 0, 2 * std::numbers::pi);
  cairo_stroke(context_.get());
}

void Canvas::fill_circle(double x, double y, double radius, Colour colour) {
  set_colour(colour);
  cairo_new_sub_path(context_.get());
  cairo_arc(context_.get(), x, y, radius, 0, 2 * std::numbers::pi);
  cairo_fill(context_.get());
}

void Canvas::draw_rectangle(const Area& area, Colour colour, double thickness) {
  set_colour(colour);
  cairo_set_line_width(context_.get(), thickness);
  cairo_set_line_join(context_.get(), CAIRO_LINE_JOIN_MITER);
  cairo_rectangle(context_.get(), area.x + thickness / 2, area.y + thickness / 2, area.width - thickness,
                  area.height - thickness);
  cairo_stroke(context_.get());
}

void Canvas::fill_rectangle(const Area& area, Colour colour) {
  set_colour(colour);
  cairo_rectangle(context_.get(), area.x, area.y, area.width, area.height);
  cairo_fill(context_.get());
}

void Canvas::set_font(const TextStyle& style) {
  cairo_select_font_face(context_.get(), "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                         style.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context_.get(), style.size);
}

double Canvas::text_width(const std::string& text, const TextStyle& style) {
  set_font(style);
  cairo_text_extents_t extents;
  cairo_text_extents(context_.get(), well_formed(text).c_str(), &extents);
  return extents.x_advance;
}

void Canvas::draw_text(double x, double y, const std::string& text, const TextStyle& style) {
  const double full = text_width(text, style);
  const double before = style.align == Align::kLeft ? 0 : style.align == Align::kCentre ? full / 2 : full;
  set_colour(style.colour);
  cairo_move_to(context_.get(), std::round(x - before), std::round(y));
  cairo_show_text(context_.get(), well_formed(text).c_str());
  cairo_new_path(context_.get());
}

void Canvas::draw_plot(const Area& area, const std::vector<Series>& series, double low, double high,
                       const std::string& title) {
  constexpr double kLeft = 44, kBottom = 18, kTop = 20, kRight = 8;
  const TextStyle label{.size = 10, .colour = colours::kFaint, .align = Align::kRight};
  const Area inner{area.x + kLeft, area.y + kTop, area.width - kLeft - kRight, area.height - kTop - kBottom};
  const double range = high > low ? high - low : 1;
  const auto y_of = [&](double value) {
    return inner.y + inner.height * (1 - (std::clamp(value, low, high) - low) / range);
  };
  for (const double value : {low, low + range / 2, low + range}) {
    draw_line(inner.x, y_of(value), inner.x + inner.width, y_of(value), colours::kRule);
    draw_text(inner.x - 6, y_of(value) + 3, tick_label(value), label);
  }
  if (!title.empty()) draw_text(area.x, area.y + 12, title, {.size = 12, .bold = true});
  size_t count = 0;
  for (const Series& one : series) {
    count = std::max(count, one.values.size());
    const double step = inner.width / static_cast<double>(std::max<size_t>(one.values.size(), 2) - 1);
    set_colour(one.colour);
    cairo_set_line_width(context_.get(), 1.25);
    cairo_set_line_join(context_.get(), CAIRO_LINE_JOIN_ROUND);
    for (size_t i = 0; i < one.values.size(); i++) {
      cairo_line_to(context_.get(), inner.x + step * static_cast<double>(i), y_of(one.values[i]));
    }
    cairo_stroke(context_.get());
  }
  const double below = inner.y + inner.height + 13;
  draw_text(inner.x, below, "0", {.size = 10, .colour = colours::kFaint});
  if (count > 1) draw_text(inner.x + inner.width, below, std::to_string(count - 1), label);
}

void Canvas::draw_heat_map(const Area& area, std::span<const double> values, size_t columns, double low, double high) {
  if (columns == 0 || values.size() < columns) return;
  const size_t rows = values.size() / columns;
  const double cell_width = area.width / static_cast<double>(columns),
               cell_height = area.height / static_cast<double>(rows);
  const double range = high > low ? high - low : 1;
  cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_NONE);
  for (size_t i = 0; i < rows * columns; i++) {
    const double x = area.x + cell_width * static_cast<double>(i % columns);
    const double y = area.y + cell_height * static_cast<double>(i / columns);
    fill_rectangle({x, y, cell_width, cell_height}, heat_colour((values[i] - low) / range));
  }
  cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_DEFAULT);
}

std::vector<uint8_t> Canvas::png() {
  if (cairo_status(context_.get()) != CAIRO_STATUS_SUCCESS) {
    throw Failure(Exit::kInputOutput,
                  std::string("drawing failed: ") + cairo_status_to_string(cairo_status(context_.get())));
  }
  std::vector<uint8_t> bytes;
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface_.get(), append_bytes, &bytes);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw Failure(Exit::kInputOutput, std::string("drawing failed: ") + cairo_status_to_string(status));
  }
  return bytes;
}

void Canvas::save(const std::string& path) { write_file(path, png()); }

int fitting_zoom(int32_t width, int32_t height, int side) {
  return std::clamp(side / std::max({width, height, 1}), 1, 8);
}

}  // namespace quofp
